// Text from anywhere through the conversions: nothing but zelkon::Error may come out, and a
// number written by CStr must read back.
#include <zelkon/common/conversions.h>
#include <zelkon/common/error.h>
#include <zelkon/test/testplatform.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const QLocale locales[]
        = {QLocale(QLocale::English, QLocale::UnitedStates),
           QLocale(QLocale::German, QLocale::Germany), QLocale(QLocale::Russian, QLocale::Russia)};
    const QString text = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
    double number = 0;
    if (size >= sizeof number)
        std::memcpy(&number, data, sizeof number);
    for (const QLocale &locale : locales) {
        zelkon::TestPlatform platform(QDate(2024, 5, 10), locale);
        double parsed = 0;
        if (zelkon::parseNumber(text, locale, &parsed) && !std::isfinite(parsed))
            std::abort();
        for (const auto &convert : {+[](const QString &t) { (void)zelkon::CLng(t); },
                                    +[](const QString &t) { (void)zelkon::CInt(t); },
                                    +[](const QString &t) { (void)zelkon::CDate(t); },
                                    +[](const QString &t) { (void)zelkon::CBool(t); }}) {
            try {
                convert(text);
            } catch (const zelkon::Error &) { }
        }
        (void)zelkon::Format(1234.5678, text);
        (void)zelkon::Format(number, text);
        // CStr keeps 15 significant digits, so the few doubles within a rounding step of the
        // largest one are written as a number too large to read back: that overflow is correct.
        if (std::isfinite(number) && std::fabs(number) < 1.79769313486231e308) {
            const QString written = zelkon::CStr(number, locale);
            double back = 0;
            if (!zelkon::parseNumber(written, locale, &back)
                || std::fabs(back - number) > std::fabs(number) * 1e-14)
                std::abort();
            (void)zelkon::Format(number, QStringLiteral("#,##0.00"));
        }
    }
    return 0;
}
