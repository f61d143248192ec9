/// \file
/// zelkon::CheckClass: an empty public class, created by name.
#pragma once

#include <zelkon/common/global.h>

#include <QObject>

namespace zelkon {

/// An object with no members, created by name ("CheckClass"): a host tests with it that the library
/// is installed and registered.
class ZELKON_EXPORT CheckClass : public QObject
{
    Q_OBJECT
public:
    /// An object with no members.
    Q_INVOKABLE explicit CheckClass(QObject *parent = nullptr);
};

} // namespace zelkon
