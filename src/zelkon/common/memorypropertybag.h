// zelkon::MemoryPropertyBag: a property bag held in memory, in the order of first writing.
#pragma once

#include <zelkon/common/propertybag.h>

#include <QStringList>

#include <memory>

namespace zelkon {

class MemoryPropertyBagPrivate;

class ZELKON_EXPORT MemoryPropertyBag : public PropertyBag
{
public:
    MemoryPropertyBag();
    MemoryPropertyBag(const MemoryPropertyBag &other);
    MemoryPropertyBag &operator=(const MemoryPropertyBag &other);
    ~MemoryPropertyBag() override;

    QVariant ReadProperty(const QString &name, const QVariant &defaultValue = {}) const override;
    // "Equal" is the platform's comparison (looselyEquals): 0 and 0.0 are the same default.
    void WriteProperty(const QString &name, const QVariant &value,
                       const QVariant &defaultValue = {}) override;

    bool contains(const QString &name) const;
    QStringList keys() const;
    // Stores a value as it is, without the default rule (used when a saved bag is read back).
    void insert(const QString &name, const QVariant &value);
    void clear();

private:
    std::unique_ptr<MemoryPropertyBagPrivate> d;
};

} // namespace zelkon
