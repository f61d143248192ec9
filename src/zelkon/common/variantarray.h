// zelkon::VariantArray: an array of variants with any number of dimensions and any bounds.
#pragma once

#include <zelkon/common/global.h>

#include <QList>
#include <QMetaType>
#include <QSharedDataPointer>
#include <QVariant>

namespace zelkon {

class VariantArrayData;

struct Bounds
{
    qint32 lower;
    qint32 upper;
    friend bool operator==(const Bounds &a, const Bounds &b) noexcept
    {
        return a.lower == b.lower && a.upper == b.upper;
    }
};

// Dimensions are counted from 1. Elements are stored with the first index varying fastest, the
// way the platform lays out its arrays, so a recordset's row block a(field, record) keeps each
// record's fields side by side.
class ZELKON_EXPORT VariantArray
{
public:
    VariantArray();
    VariantArray(const VariantArray &other);
    VariantArray &operator=(const VariantArray &other);
    ~VariantArray();
    // Every element starts Empty. An upper bound below its lower bound gives an empty dimension;
    // throws Error 9 when a dimension would hold a negative count below -1.
    explicit VariantArray(const QList<Bounds> &dims);

    int dimensions() const;
    QList<Bounds> bounds() const;
    qint32 LBound(int dim = 1) const; // Error 9 past the dimensions
    qint32 UBound(int dim = 1) const;
    qsizetype size() const;

    QVariant &at(const QList<qint32> &indices); // Error 9 out of range
    const QVariant &at(const QList<qint32> &indices) const;

    // Elements in storage order (first index fastest).
    const QList<QVariant> &elements() const;

    friend ZELKON_EXPORT bool operator==(const VariantArray &a, const VariantArray &b);
    friend bool operator!=(const VariantArray &a, const VariantArray &b) { return !(a == b); }

private:
    qsizetype offset(const QList<qint32> &indices) const;

    // An array is a value: a copy shares the elements until one of the two is written to.
    QSharedDataPointer<VariantArrayData> d;
};

} // namespace zelkon

Q_DECLARE_METATYPE(zelkon::VariantArray)
