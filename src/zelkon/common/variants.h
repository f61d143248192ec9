// Helpers for the variant conventions: Empty, Null, Missing, arrays and objects in a QVariant.
#pragma once

#include <zelkon/common/global.h>
#include <zelkon/common/missing.h>
#include <zelkon/common/variantarray.h>

#include <QVariant>

#include <cstddef>

namespace zelkon {

// The text that stands for no restriction: a check list with nothing or everything checked, a
// date bound that allows any date.
inline QString allText()
{
    return QStringLiteral("All");
}

inline QVariant emptyVariant()
{
    return QVariant();
}
inline QVariant nullVariant()
{
    return QVariant::fromValue(nullptr);
}
inline QVariant missingVariant()
{
    return QVariant::fromValue(Missing{});
}

inline bool IsEmpty(const QVariant &v)
{
    return !v.isValid();
}
inline bool IsNull(const QVariant &v)
{
    return v.metaType() == QMetaType::fromType<std::nullptr_t>();
}
inline bool IsMissing(const QVariant &v)
{
    return v.metaType() == QMetaType::fromType<Missing>();
}
inline bool isVariantArray(const QVariant &v)
{
    return v.metaType() == QMetaType::fromType<VariantArray>();
}
inline bool IsArray(const QVariant &v)
{
    return v.metaType() == QMetaType::fromType<QVariantList>() || isVariantArray(v);
}
ZELKON_EXPORT bool IsObject(const QVariant &v);
ZELKON_EXPORT QObject *toObject(const QVariant &v); // nullptr when v holds no object
ZELKON_EXPORT bool isNumberType(const QVariant &v); // bool excluded
ZELKON_EXPORT bool isDateType(const QVariant &v);

// The same kind of value and the same value, bit for bit where it matters (a saved and reloaded
// value must be identical to the original, so 1 and 1.0 or "" and Empty are different here).
ZELKON_EXPORT bool identical(const QVariant &a, const QVariant &b);

// The platform's "=" between two variants: numbers compare by value whatever their width
// (True is -1), strings exactly, dates by instant, Empty equals 0 and "". Arrays and objects
// compare identical. Null equals only Null. Never throws.
ZELKON_EXPORT bool looselyEquals(const QVariant &a, const QVariant &b);

} // namespace zelkon
