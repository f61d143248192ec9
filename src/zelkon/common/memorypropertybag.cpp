#include <zelkon/common/memorypropertybag.h>
#include <zelkon/common/variants.h>

namespace zelkon {

QVariant MemoryPropertyBag::ReadProperty(const QString &name, const QVariant &defaultValue) const
{
    const auto it = m_values.constFind(name);
    return it == m_values.constEnd() ? defaultValue : *it;
}

void MemoryPropertyBag::WriteProperty(const QString &name, const QVariant &value,
                                      const QVariant &defaultValue)
{
    if (looselyEquals(value, defaultValue)) {
        if (m_values.remove(name))
            m_keys.removeOne(name);
        return;
    }
    insert(name, value);
}

void MemoryPropertyBag::insert(const QString &name, const QVariant &value)
{
    if (!m_values.contains(name))
        m_keys.append(name);
    m_values.insert(name, value);
}

void MemoryPropertyBag::clear()
{
    m_keys.clear();
    m_values.clear();
}

} // namespace zelkon
