#include "zelkontaskmenufactory.h"
#include "zelkontaskmenu.h"

#include <QWidget>

ZelkonTaskMenuFactory::ZelkonTaskMenuFactory(QExtensionManager *parent)
    : QExtensionFactory(parent)
{ }

QObject *ZelkonTaskMenuFactory::createExtension(QObject *object, const QString &iid,
                                                QObject *parent) const
{
    if (iid != QLatin1String(Q_TYPEID(QDesignerTaskMenuExtension)))
        return nullptr;
    auto *control = qobject_cast<QWidget *>(object);
    if (!control)
        return nullptr;
    QString className = QString::fromLatin1(control->metaObject()->className());
    className.remove(QStringLiteral("zelkon::"));
    const QString page = ZelkonTaskMenu::pageFor(className);
    return page.isEmpty() ? nullptr : new ZelkonTaskMenu(control, page, parent);
}
