// HandlerClass: what a Down does with the events of the windows it hooks: a left press or double
// click on its combo box asks for the pop-up, and its form keeps its active look while hooked.
#pragma once

#include <QObject>

class QEvent;

namespace zelkon {

class HandlerClass : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    // Dispatches on the hook's name, compared exactly; true when the event is handled and goes
    // no further. Any other name handles nothing.
    bool WndProc(const QString &name, QObject *window, QEvent *event);
    bool WndProcParentForm(QObject *window, QEvent *event);
    bool WndProcComboBox(QObject *window, QEvent *event);

Q_SIGNALS:
    void CBSetFocus();
};

} // namespace zelkon
