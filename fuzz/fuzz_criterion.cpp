// Criteria typed by anyone: a criterion either parses or raises zelkon::Error, and a parsed one
// evaluates against every kind of value.
#include <zelkon/common/error.h>
#include <zelkon/common/variants.h>
#include <zelkon/data/criterion_p.h>

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
    try {
        const zelkon::Criterion criterion(text);
        const QVariant values[] = {QVariant(),
                                   zelkon::nullVariant(),
                                   QStringLiteral("abc"),
                                   QStringLiteral("Ab%"),
                                   42,
                                   3.5,
                                   QDateTime(QDate(2024, 5, 10), QTime(12, 0)),
                                   true};
        for (const QVariant &value : values)
            (void)criterion.matches(value);
    } catch (const zelkon::Error &) { }
    return 0;
}
