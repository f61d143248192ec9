// zelkon::CheckClass: an empty public class, created by name.
#pragma once

#include <zelkon/common/global.h>

#include <QObject>

namespace zelkon {

class ZELKON_EXPORT CheckClass : public QObject
{
    Q_OBJECT
public:
    Q_INVOKABLE explicit CheckClass(QObject *parent = nullptr);
};

} // namespace zelkon
