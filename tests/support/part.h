// A named part of a control, as hosts and tests find it: "Text", "ButDropDown", "DateLong", ...
#pragma once

#include <QObject>
#include <QWidget>

template<typename T = QWidget>
T *part(const QObject *parent, const char *name)
{
    return parent->findChild<T *>(QString::fromLatin1(name));
}
