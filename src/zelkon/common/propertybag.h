/// \file
/// zelkon::PropertyBag: the container's store of a control's persisted properties.
#pragma once

#include <zelkon/common/global.h>

#include <QString>
#include <QVariant>

namespace zelkon {

/// The container's store of a control's persisted properties, handed to Control::ReadProperties()
/// and Control::WriteProperties().
class ZELKON_EXPORT PropertyBag
{
public:
    /// Bags are used through this interface.
    virtual ~PropertyBag() = default;
    /// The value saved under `name` (names compare exactly), or `defaultValue` when none is.
    virtual QVariant ReadProperty(const QString &name, const QVariant &defaultValue = {}) const = 0;
    /// Stores `value` under `name`. Keeps nothing when value equals defaultValue (and forgets an
    /// older value under that name).
    virtual void WriteProperty(const QString &name, const QVariant &value,
                               const QVariant &defaultValue = {})
        = 0;
};

} // namespace zelkon
