#include <zelkon/dropdown/handlerclass_p.h>
#include <zelkon/dropdown/wndmodule_p.h>

#include <QHash>
#include <QPointer>
#include <QWidget>

namespace zelkon {

namespace {

QString handlerKey(qint32 id)
{
    return QString::number(id) + QLatin1Char('K');
}

class Hook;

// The tables belong to the thread that owns the windows, as the windows themselves do.
struct Tables
{
    qint32 counter = 0;
    QHash<QString, QPointer<HandlerClass>> handlers;
    QHash<const QWidget *, QPointer<Hook>> hooks;
};

Tables &tables()
{
    thread_local Tables t;
    return t;
}

// One hook on one window: the event filter that stands for the replaced window procedure. It is
// a child of the window, so it goes with the window.
class Hook : public QObject
{
public:
    Hook(QWidget *window, const QString &name, const QString &handler)
        : QObject(window)
        , m_name(name)
        , m_handler(handler)
    {
        window->installEventFilter(this);
    }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        // A handler that is gone handles nothing: the window behaves as if it were not hooked.
        HandlerClass *handler = tables().handlers.value(m_handler);
        return handler && handler->WndProc(m_name, watched, event);
    }

private:
    const QString m_name;
    const QString m_handler;
};

} // namespace

qint32 WndModule::RegisterHandler(HandlerClass *handler)
{
    Tables &t = tables();
    ++t.counter;
    t.handlers.insert(handlerKey(t.counter), handler);
    return t.counter;
}

void WndModule::UnregisterHandler(qint32 id)
{
    tables().handlers.remove(handlerKey(id));
}

void WndModule::Subclass(qint32 id, QWidget *window, const QString &name)
{
    if (!window)
        return;
    Unsubclass(window);
    tables().hooks.insert(window, new Hook(window, name, handlerKey(id)));
}

void WndModule::Unsubclass(QWidget *window)
{
    QPointer<Hook> hook = tables().hooks.take(window);
    if (!hook)
        return;
    window->removeEventFilter(hook);
    // The hook may be the filter that is running now: it goes once the event is done.
    hook->deleteLater();
}

} // namespace zelkon
