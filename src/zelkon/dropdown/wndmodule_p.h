// WndModule: routes the events of hooked windows to registered handlers through event filters.
// A window has at most one hook: hooking it again replaces the hook it had.
#pragma once

#include <QString>

class QWidget;

namespace zelkon {

class HandlerClass;

class WndModule
{
public:
    // The handler's id, unique in this thread; the module does not own the handler.
    static qint32 RegisterHandler(HandlerClass *handler);
    static void UnregisterHandler(qint32 id);
    // Hands every event of `window` to the handler's WndProc under `name` before the window
    // sees it. A window that already has a hook loses it first, so hooks never stack.
    static void Subclass(qint32 id, QWidget *window, const QString &name);
    // Removes the window's hook; a window without one is left as it is.
    static void Unsubclass(QWidget *window);
};

} // namespace zelkon
