#include <zelkon/common/conversions.h>
#include <zelkon/common/error.h>
#include <zelkon/common/variants.h>
#include <zelkon/smallcontrols/inputarray_p.h>

#include <QComboBox>

#include <limits>

namespace zelkon {

namespace {

constexpr int identifierRole = Qt::UserRole;

// array(index) of a one-dimensional array, with the platform's errors: 13 when `array` is no
// array, 9 outside its bounds or for an array of another rank.
QVariant element(const QVariant &array, qint32 index)
{
    if (array.metaType() == QMetaType::fromType<QVariantList>()) {
        const QVariantList list = array.toList();
        if (index < 0 || index >= list.size())
            throw Error(SubscriptOutOfRange);
        return list.at(index);
    }
    if (isVariantArray(array)) {
        const VariantArray a = array.value<VariantArray>();
        if (a.dimensions() != 1)
            throw Error(SubscriptOutOfRange);
        return a.at({index});
    }
    throw Error(TypeMismatch);
}

} // namespace

void loadInputArray(QComboBox *combo, const QVariant &input, Identifiers identifiers)
{
    combo->clear();
    QStringList texts;
    QList<qint32> ids;
    // The rows read so far go into the box also when a later row fails.
    const auto flush = [&] {
        combo->addItems(texts);
        for (qsizetype row = 0; row < ids.size(); ++row) {
            if (ids.at(row) != 0)
                combo->setItemData(int(row), ids.at(row), identifierRole);
        }
        // Qt selects the first row of a filled empty box by itself; the host selects.
        combo->setCurrentIndex(-1);
    };
    qint32 row = 0;
    try {
        const QVariant textArray = element(input, 0);
        const qint16 last = CInt(UBound(textArray));
        for (; row <= last; ++row) {
            // The text goes in before its identifier is read, so a row whose identifier is
            // missing stays with the identifier 0.
            texts << CStr(element(textArray, row));
            ids << 0;
            const QVariant idArray = element(input, 1);
            if (identifiers == Identifiers::Required || !IsEmpty(idArray))
                ids.last() = CLng(element(idArray, row));
        }
        // The row counter is 16-bit: after a last row of 32767 its step overflows.
        if (last == std::numeric_limits<qint16>::max())
            throw Error(Overflow);
    } catch (const Error &error) {
        flush();
        throw Error(error.number(),
                    QStringLiteral("InputArray, row %1: %2").arg(row).arg(error.message()));
    }
    flush();
}

int rowIdentifier(const QComboBox *combo, int row)
{
    return combo->itemData(row, identifierRole).toInt();
}

} // namespace zelkon
