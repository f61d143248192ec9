#include <zelkon/common/error.h>
#include <zelkon/common/variantarray.h>
#include <zelkon/common/variants.h>

namespace zelkon {

VariantArray::VariantArray() = default;

VariantArray::VariantArray(const QList<Bounds> &dims)
    : m_dims(dims)
{
    qint64 count = dims.isEmpty() ? 0 : 1;
    for (const Bounds &b : dims) {
        const qint64 extent = qint64(b.upper) - b.lower + 1;
        if (extent < 0)
            throw Error(SubscriptOutOfRange);
        count *= extent;
        if (count > (qint64(1) << 28))
            throw Error(7, QStringLiteral("Out of memory"));
    }
    m_data.resize(qsizetype(count));
}

qint32 VariantArray::LBound(int dim) const
{
    if (dim < 1 || dim > m_dims.size())
        throw Error(SubscriptOutOfRange);
    return m_dims.at(dim - 1).lower;
}

qint32 VariantArray::UBound(int dim) const
{
    if (dim < 1 || dim > m_dims.size())
        throw Error(SubscriptOutOfRange);
    return m_dims.at(dim - 1).upper;
}

qsizetype VariantArray::offset(const QList<qint32> &indices) const
{
    if (indices.size() != m_dims.size() || m_dims.isEmpty())
        throw Error(SubscriptOutOfRange);
    qsizetype pos = 0;
    qsizetype stride = 1;
    for (qsizetype d = 0; d < m_dims.size(); ++d) {
        const Bounds &b = m_dims.at(d);
        const qint32 i = indices.at(d);
        if (i < b.lower || i > b.upper)
            throw Error(SubscriptOutOfRange);
        pos += qsizetype(i - b.lower) * stride;
        stride *= qsizetype(b.upper) - b.lower + 1;
    }
    return pos;
}

QVariant &VariantArray::at(const QList<qint32> &indices)
{
    return m_data[offset(indices)];
}

const QVariant &VariantArray::at(const QList<qint32> &indices) const
{
    return m_data.at(offset(indices));
}

bool operator==(const VariantArray &a, const VariantArray &b)
{
    if (a.m_dims != b.m_dims || a.m_data.size() != b.m_data.size())
        return false;
    for (qsizetype i = 0; i < a.m_data.size(); ++i) {
        if (!identical(a.m_data.at(i), b.m_data.at(i)))
            return false;
    }
    return true;
}

} // namespace zelkon
