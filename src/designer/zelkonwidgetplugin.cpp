#include "zelkonwidgetplugin.h"
#include "zelkontaskmenu.h"
#include "zelkontaskmenufactory.h"

#include <zelkon/common/control.h>
#include <zelkon/common/registry.h>
#include <zelkon/common/strings_p.h>

#include <QIcon>
#include <QtDesigner/QExtensionManager>

#include <memory>

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
    return zelkon::loadString("designerToolTip").arg(m_className);
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
    return QIcon(QStringLiteral(":/zelkon/designer/icons/%1.png").arg(m_className.toLower()));
}

bool ZelkonWidgetPlugin::isContainer() const
{
    return false;
}

QWidget *ZelkonWidgetPlugin::createWidget(QWidget *parent)
{
    zelkon::Control *control = zelkon::createControl(m_className, parent);
    // Only Designer initializes the plugin with its core: QUiLoader creates the controls of a form
    // that runs, which stay in user mode.
    if (control && m_core) {
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

void ZelkonWidgetPlugin::initialize(QDesignerFormEditorInterface *core)
{
    m_initialized = true;
    if (core == m_core)
        return;
    m_core = core;
    QExtensionManager *manager = core ? core->extensionManager() : nullptr;
    if (manager && !ZelkonTaskMenu::pageFor(m_className).isEmpty())
        manager->registerExtensions(new ZelkonTaskMenuFactory(manager),
                                    Q_TYPEID(QDesignerTaskMenuExtension));
}

// A control dropped on a form starts at its size hint: without a geometry here Designer would
// give it the size of its drag image.
QString ZelkonWidgetPlugin::domXml() const
{
    QSize size(100, 20);
    if (const std::unique_ptr<zelkon::Control> control{zelkon::createControl(m_className)}) {
        control->setUserMode(false);
        control->InitProperties();
        size = control->sizeHint();
    }
    return QStringLiteral("<ui language=\"c++\"><widget class=\"%1\" name=\"%2\">"
                          "<property name=\"geometry\"><rect><x>0</x><y>0</y>"
                          "<width>%3</width><height>%4</height></rect></property>"
                          "</widget></ui>")
        .arg(name(), m_className.left(1).toLower() + m_className.mid(1))
        .arg(size.width())
        .arg(size.height());
}
