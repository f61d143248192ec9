/// \file
/// zelkon::MemoryPropertyBag: a property bag held in memory, in the order of first writing.
#pragma once

#include <zelkon/common/propertybag.h>

#include <QStringList>

#include <memory>

namespace zelkon {

class MemoryPropertyBagPrivate;

/// A property bag held in memory, in the order of first writing: what form files and tests hand to
/// the controls.
class ZELKON_EXPORT MemoryPropertyBag : public PropertyBag
{
public:
    /// An empty bag.
    MemoryPropertyBag();
    ///@{
    /// Bags copy by value.
    MemoryPropertyBag(const MemoryPropertyBag &other);
    MemoryPropertyBag &operator=(const MemoryPropertyBag &other);
    ///@}
    /// Frees the stored values.
    ~MemoryPropertyBag() override;

    /// The value saved under `name`, or `defaultValue` when none is.
    QVariant ReadProperty(const QString &name, const QVariant &defaultValue = {}) const override;
    /// Stores `value` under `name`, or forgets it when it equals `defaultValue`. "Equal" is the
    /// platform's comparison (looselyEquals): 0 and 0.0 are the same default.
    void WriteProperty(const QString &name, const QVariant &value,
                       const QVariant &defaultValue = {}) override;

    /// Whether a value is stored under `name`.
    bool contains(const QString &name) const;
    /// The stored names, in the order of first writing.
    QStringList keys() const;
    /// Stores a value as it is, without the default rule (used when a saved bag is read back).
    void insert(const QString &name, const QVariant &value);
    /// Forgets every value.
    void clear();

private:
    std::unique_ptr<MemoryPropertyBagPrivate> d;
};

} // namespace zelkon
