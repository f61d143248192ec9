/// \file
/// zelkon::CheckClass: an empty public class, created by name.
#pragma once

#include <zelkon/common/global.h>

#include <QObject>

namespace zelkon {

/// A public class with no members, created by name ("CheckClass"); kept so that hosts that
/// create it still find it.
class ZELKON_EXPORT CheckClass : public QObject
{
    Q_OBJECT
public:
    /// An object with no members.
    Q_INVOKABLE explicit CheckClass(QObject *parent = nullptr);
};

} // namespace zelkon
