#include <zelkon/dropdown/handlerclass_p.h>

#include <QMouseEvent>

namespace zelkon {

bool HandlerClass::WndProc(const QString &name, QObject *window, QEvent *event)
{
    if (name == QLatin1String("ParentForm"))
        return WndProcParentForm(window, event);
    if (name == QLatin1String("ComboBox"))
        return WndProcComboBox(window, event);
    return false;
}

bool HandlerClass::WndProcParentForm(QObject *, QEvent *event)
{
    // The pop-up takes the activation when it opens; the form must not look left behind.
    return event->type() == QEvent::WindowDeactivate;
}

bool HandlerClass::WndProcComboBox(QObject *, QEvent *event)
{
    if (event->type() != QEvent::MouseButtonPress && event->type() != QEvent::MouseButtonDblClick)
        return false;
    if (static_cast<QMouseEvent *>(event)->button() != Qt::LeftButton)
        return false;
    // The combo box's own list never opens: the check list opens instead.
    Q_EMIT CBSetFocus();
    return true;
}

} // namespace zelkon
