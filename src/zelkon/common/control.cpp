#include <zelkon/common/control.h>
#include <zelkon/common/propertybag.h>
#include <zelkon/common/version.h>

namespace zelkon {

Control::Control(QWidget *parent)
    : QWidget(parent)
{ }

Control::~Control() = default;

void Control::InitProperties() { }

void Control::ReadProperties(PropertyBag &) { }

void Control::WriteProperties(PropertyBag &) { }

void Control::setUserMode(bool runMode)
{
    if (m_userMode == runMode)
        return;
    m_userMode = runMode;
    userModeChanged();
}

QVariant Control::Version() const
{
    return versionArray();
}

qint32 Control::hWnd() const
{
    return qint32(quintptr(effectiveWinId()) & 0x7fffffff);
}

QList<Control *> Control::formControls(const QWidget *form)
{
    QList<Control *> controls;
    if (!form)
        return controls;
    for (QObject *child : form->children()) {
        if (auto *control = qobject_cast<Control *>(child))
            controls.append(control);
    }
    return controls;
}

} // namespace zelkon
