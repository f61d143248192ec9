#include <zelkon/common/error.h>
#include <zelkon/common/variantarray.h>
#include <zelkon/common/variants.h>

namespace zelkon {

class VariantArrayData : public QSharedData
{
public:
    QList<Bounds> dims;
    QList<QVariant> data;
};

VariantArray::VariantArray()
    : d(new VariantArrayData)
{ }

VariantArray::VariantArray(const VariantArray &other) = default;
VariantArray &VariantArray::operator=(const VariantArray &other) = default;
VariantArray::~VariantArray() = default;

VariantArray::VariantArray(const QList<Bounds> &dims)
    : d(new VariantArrayData)
{
    d->dims = dims;
    qint64 count = dims.isEmpty() ? 0 : 1;
    for (const Bounds &b : dims) {
        const qint64 extent = qint64(b.upper) - b.lower + 1;
        if (extent < 0)
            throw Error(SubscriptOutOfRange);
        count *= extent;
        if (count > (qint64(1) << 28))
            throw Error(7, QStringLiteral("Out of memory"));
    }
    d->data.resize(qsizetype(count));
}

int VariantArray::dimensions() const
{
    return int(d->dims.size());
}

QList<Bounds> VariantArray::bounds() const
{
    return d->dims;
}

qsizetype VariantArray::size() const
{
    return d->data.size();
}

const QList<QVariant> &VariantArray::elements() const
{
    return d->data;
}

qint32 VariantArray::LBound(int dim) const
{
    if (dim < 1 || dim > d->dims.size())
        throw Error(SubscriptOutOfRange);
    return d->dims.at(dim - 1).lower;
}

qint32 VariantArray::UBound(int dim) const
{
    if (dim < 1 || dim > d->dims.size())
        throw Error(SubscriptOutOfRange);
    return d->dims.at(dim - 1).upper;
}

qsizetype VariantArray::offset(const QList<qint32> &indices) const
{
    const QList<Bounds> &dims = d->dims;
    if (indices.size() != dims.size() || dims.isEmpty())
        throw Error(SubscriptOutOfRange);
    qsizetype pos = 0;
    qsizetype stride = 1;
    for (qsizetype k = 0; k < dims.size(); ++k) {
        const Bounds &b = dims.at(k);
        const qint32 i = indices.at(k);
        if (i < b.lower || i > b.upper)
            throw Error(SubscriptOutOfRange);
        pos += qsizetype(i - b.lower) * stride;
        stride *= qsizetype(b.upper) - b.lower + 1;
    }
    return pos;
}

QVariant &VariantArray::at(const QList<qint32> &indices)
{
    const qsizetype at = offset(indices);
    return d->data[at];
}

const QVariant &VariantArray::at(const QList<qint32> &indices) const
{
    return d->data.at(offset(indices));
}

bool operator==(const VariantArray &a, const VariantArray &b)
{
    if (a.d == b.d)
        return true;
    if (a.d->dims != b.d->dims || a.d->data.size() != b.d->data.size())
        return false;
    for (qsizetype i = 0; i < a.d->data.size(); ++i) {
        if (!identical(a.d->data.at(i), b.d->data.at(i)))
            return false;
    }
    return true;
}

} // namespace zelkon
