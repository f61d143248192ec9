#include "zelkondesignercollection.h"
#include "zelkonwidgetplugin.h"

#include <zelkon/common/registry.h>

ZelkonDesignerCollection::ZelkonDesignerCollection(QObject *parent)
    : QObject(parent)
{
    for (const QString &className : zelkon::controlClassNames())
        m_widgets.append(new ZelkonWidgetPlugin(className, this));
}

QList<QDesignerCustomWidgetInterface *> ZelkonDesignerCollection::customWidgets() const
{
    return m_widgets;
}
