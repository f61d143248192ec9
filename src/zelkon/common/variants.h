/// \file
/// Helpers for the variant conventions: Empty, Null, Missing, arrays and objects in a QVariant.
#pragma once

#include <zelkon/common/global.h>
#include <zelkon/common/missing.h>
#include <zelkon/common/variantarray.h>

#include <QVariant>

#include <cstddef>

namespace zelkon {

/// The text that stands for no restriction: a check list with nothing or everything checked, a
/// date bound that allows any date.
inline QString allText()
{
    return QStringLiteral("All");
}

/// Empty: an invalid QVariant, the value of a variable never assigned.
inline QVariant emptyVariant()
{
    return QVariant();
}
/// Null: a QVariant holding nullptr, the value of a database NULL.
inline QVariant nullVariant()
{
    return QVariant::fromValue(nullptr);
}
/// The value of an optional argument left out (see Missing).
inline QVariant missingVariant()
{
    return QVariant::fromValue(Missing{});
}

/// Whether `v` is Empty.
inline bool IsEmpty(const QVariant &v)
{
    return !v.isValid();
}
/// Whether `v` is Null.
inline bool IsNull(const QVariant &v)
{
    return v.metaType() == QMetaType::fromType<std::nullptr_t>();
}
/// Whether `v` is an argument left out.
inline bool IsMissing(const QVariant &v)
{
    return v.metaType() == QMetaType::fromType<Missing>();
}
/// Whether `v` holds a VariantArray.
inline bool isVariantArray(const QVariant &v)
{
    return v.metaType() == QMetaType::fromType<VariantArray>();
}
/// Whether `v` holds an array: a QVariantList or a VariantArray.
inline bool IsArray(const QVariant &v)
{
    return v.metaType() == QMetaType::fromType<QVariantList>() || isVariantArray(v);
}
/// Whether `v` holds a QObject pointer (also nullptr of that type).
ZELKON_EXPORT bool IsObject(const QVariant &v);
/// The object `v` holds; nullptr when it holds none.
ZELKON_EXPORT QObject *toObject(const QVariant &v);
/// Whether `v` holds a number of any width; bool is not one.
ZELKON_EXPORT bool isNumberType(const QVariant &v);
/// Whether `v` holds a QDateTime or a QDate.
ZELKON_EXPORT bool isDateType(const QVariant &v);

/// The same kind of value and the same value, bit for bit where it matters (a saved and reloaded
/// value must be identical to the original, so 1 and 1.0 or "" and Empty are different here).
ZELKON_EXPORT bool identical(const QVariant &a, const QVariant &b);

/// The platform's "=" between two variants: numbers compare by value whatever their width
/// (True is -1), strings exactly, dates by instant, Empty equals 0 and "". Arrays and objects
/// compare identical. Null equals only Null. Never throws.
ZELKON_EXPORT bool looselyEquals(const QVariant &a, const QVariant &b);

} // namespace zelkon
