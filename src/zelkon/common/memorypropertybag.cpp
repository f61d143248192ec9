#include <zelkon/common/memorypropertybag.h>
#include <zelkon/common/variants.h>

#include <QHash>

namespace zelkon {

class MemoryPropertyBagPrivate
{
public:
    QStringList keys;
    QHash<QString, QVariant> values;
};

MemoryPropertyBag::MemoryPropertyBag()
    : d(std::make_unique<MemoryPropertyBagPrivate>())
{ }

MemoryPropertyBag::MemoryPropertyBag(const MemoryPropertyBag &other)
    : PropertyBag(other)
    , d(std::make_unique<MemoryPropertyBagPrivate>(*other.d))
{ }

MemoryPropertyBag &MemoryPropertyBag::operator=(const MemoryPropertyBag &other)
{
    *d = *other.d;
    return *this;
}

MemoryPropertyBag::~MemoryPropertyBag() = default;

QVariant MemoryPropertyBag::ReadProperty(const QString &name, const QVariant &defaultValue) const
{
    const auto it = d->values.constFind(name);
    return it == d->values.constEnd() ? defaultValue : *it;
}

void MemoryPropertyBag::WriteProperty(const QString &name, const QVariant &value,
                                      const QVariant &defaultValue)
{
    if (looselyEquals(value, defaultValue)) {
        if (d->values.remove(name))
            d->keys.removeOne(name);
        return;
    }
    insert(name, value);
}

bool MemoryPropertyBag::contains(const QString &name) const
{
    return d->values.contains(name);
}

QStringList MemoryPropertyBag::keys() const
{
    return d->keys;
}

void MemoryPropertyBag::insert(const QString &name, const QVariant &value)
{
    if (!d->values.contains(name))
        d->keys.append(name);
    d->values.insert(name, value);
}

void MemoryPropertyBag::clear()
{
    d->keys.clear();
    d->values.clear();
}

} // namespace zelkon
