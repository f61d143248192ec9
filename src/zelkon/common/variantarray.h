/// \file
/// zelkon::VariantArray: an array of variants with any number of dimensions and any bounds.
#pragma once

#include <zelkon/common/global.h>

#include <QList>
#include <QMetaType>
#include <QSharedDataPointer>
#include <QVariant>

namespace zelkon {

class VariantArrayData;

/// The bounds of one dimension of a VariantArray, both inclusive.
struct Bounds
{
    /// The first index.
    qint32 lower;
    /// The last index; lower - 1 for an empty dimension.
    qint32 upper;
    /// Same lower and upper bounds.
    friend bool operator==(const Bounds &a, const Bounds &b) noexcept
    {
        return a.lower == b.lower && a.upper == b.upper;
    }
};

/// An array of variants with any number of dimensions and any bounds, the value of the platform's
/// multi-dimensional arrays (a one-dimensional array is a QVariantList).
///
/// Dimensions are counted from 1. Elements are stored with the first index varying fastest, the
/// way the platform lays out its arrays, so a recordset's row block a(field, record) keeps each
/// record's fields side by side.
class ZELKON_EXPORT VariantArray
{
public:
    /// An array of no dimensions and no elements.
    VariantArray();
    ///@{
    /// Arrays are values: a copy shares the elements until one of the two is written to.
    VariantArray(const VariantArray &other);
    VariantArray &operator=(const VariantArray &other);
    ~VariantArray();
    ///@}
    /// An array with these bounds, one per dimension. Every element starts Empty. An upper bound
    /// below its lower bound gives an empty dimension; throws Error 9 when a dimension would hold a
    /// negative count below -1.
    explicit VariantArray(const QList<Bounds> &dims);

    /// The number of dimensions.
    int dimensions() const;
    /// The bounds of every dimension, the first one first.
    QList<Bounds> bounds() const;
    ///@{
    /// The lower and upper bound of dimension `dim` (from 1); Error 9 past the dimensions.
    qint32 LBound(int dim = 1) const;
    qint32 UBound(int dim = 1) const;
    ///@}
    /// The number of elements.
    qsizetype size() const;

    ///@{
    /// The element at one index per dimension; Error 9 out of range.
    QVariant &at(const QList<qint32> &indices);
    const QVariant &at(const QList<qint32> &indices) const;
    ///@}

    /// Elements in storage order (first index fastest).
    const QList<QVariant> &elements() const;

    /// Same bounds and elements that are identical() one by one.
    friend ZELKON_EXPORT bool operator==(const VariantArray &a, const VariantArray &b);
    /// Not operator==().
    friend bool operator!=(const VariantArray &a, const VariantArray &b) { return !(a == b); }

private:
    qsizetype offset(const QList<qint32> &indices) const;

    // An array is a value: a copy shares the elements until one of the two is written to.
    QSharedDataPointer<VariantArrayData> d;
};

} // namespace zelkon

Q_DECLARE_METATYPE(zelkon::VariantArray)
