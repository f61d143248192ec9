#include "zelkonwidgetplugin.h"

#include <zelkon/common/control.h>
#include <zelkon/common/registry.h>

#include <QIcon>

namespace {

// Where each class's header lives, for the code that uic writes.
QString subsystemOf(const QString &className)
{
    static const QHash<QString, QString> folders = {
        {QStringLiteral("CheckCombo"), QStringLiteral("checklist")},
        {QStringLiteral("RelDate"), QStringLiteral("reldate")},
        {QStringLiteral("NumEdit"), QStringLiteral("numedit")},
        {QStringLiteral("Navigator"), QStringLiteral("navigator")},
        {QStringLiteral("Down"), QStringLiteral("dropdown")},
        {QStringLiteral("ElapsedBut"), QStringLiteral("smallcontrols")},
        {QStringLiteral("BoxCombo"), QStringLiteral("smallcontrols")},
        {QStringLiteral("ComboListBox"), QStringLiteral("smallcontrols")},
    };
    return folders.value(className, QStringLiteral("common"));
}

} // namespace

ZelkonWidgetPlugin::ZelkonWidgetPlugin(const QString &className, QObject *parent)
    : QObject(parent)
    , m_className(className)
{ }

QString ZelkonWidgetPlugin::name() const
{
    return QStringLiteral("zelkon::") + m_className;
}

QString ZelkonWidgetPlugin::group() const
{
    return QStringLiteral("Zelkon");
}

QString ZelkonWidgetPlugin::toolTip() const
{
    return tr("Zelkon %1 filter control").arg(m_className);
}

QString ZelkonWidgetPlugin::whatsThis() const
{
    return toolTip();
}

QString ZelkonWidgetPlugin::includeFile() const
{
    return QStringLiteral("zelkon/%1/%2.h").arg(subsystemOf(m_className), m_className.toLower());
}

QIcon ZelkonWidgetPlugin::icon() const
{
    return QIcon();
}

bool ZelkonWidgetPlugin::isContainer() const
{
    return false;
}

QWidget *ZelkonWidgetPlugin::createWidget(QWidget *parent)
{
    zelkon::Control *control = zelkon::createControl(m_className, parent);
    if (control) {
        // On a form being designed the control is in design mode, as a newly placed control.
        control->setUserMode(false);
        control->InitProperties();
    }
    return control;
}

bool ZelkonWidgetPlugin::isInitialized() const
{
    return m_initialized;
}

void ZelkonWidgetPlugin::initialize(QDesignerFormEditorInterface *)
{
    m_initialized = true;
}

QString ZelkonWidgetPlugin::domXml() const
{
    return QStringLiteral("<ui language=\"c++\"><widget class=\"%1\" name=\"%2\"/></ui>")
        .arg(name(), m_className.left(1).toLower() + m_className.mid(1));
}
