#include <zelkon/common/control.h>
#include <zelkon/common/keycodes_p.h>
#include <zelkon/common/propertybag.h>
#include <zelkon/common/version.h>

#include <QMouseEvent>
#include <QPainter>
#include <QPointer>
#include <QStyle>
#include <QStyleOptionFrame>

namespace zelkon {

class ControlPrivate : public QObject
{
public:
    explicit ControlPrivate(Control *control)
        : q(control)
    { }

    // Hands the mouse events of the children that forward them to the control; never eats one.
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        MouseAction action;
        switch (event->type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick:
            action = MouseAction::Down;
            break;
        case QEvent::MouseButtonRelease:
            action = MouseAction::Up;
            break;
        case QEvent::MouseMove:
            action = MouseAction::Move;
            break;
        default:
            return false;
        }
        auto *child = qobject_cast<QWidget *>(watched);
        if (!child)
            return false;
        MouseArgs args = mouseArgs(static_cast<QMouseEvent *>(event));
        const QPointer<QWidget> alive(child);
        q->childMouseEvent(child, action, args);
        // A handler of the host may have destroyed the child: Qt must not deliver to it.
        return alive.isNull();
    }

    int frameWidth() const
    {
        if (border == 0)
            return 0;
        if (appearance == 0)
            return 1;
        return q->style()->pixelMetric(QStyle::PM_DefaultFrameWidth, nullptr, q);
    }

    void applyFrame()
    {
        const int w = frameWidth();
        q->setContentsMargins(w, w, w, w);
        q->update();
    }

    Control *q;
    bool userMode = true;
    int index = -1;
    int appearance = 0;
    int border = 0;
};

Control::Control(QWidget *parent)
    : QWidget(parent)
    , d(std::make_unique<ControlPrivate>(this))
{ }

Control::~Control() = default;

void Control::InitProperties() { }

void Control::ReadProperties(PropertyBag &) { }

void Control::WriteProperties(PropertyBag &) { }

bool Control::UserMode() const
{
    return d->userMode;
}

void Control::setUserMode(bool runMode)
{
    if (d->userMode == runMode)
        return;
    d->userMode = runMode;
    userModeChanged();
}

void Control::userModeChanged() { }

int Control::Index() const
{
    return d->index;
}

void Control::setIndex(int index)
{
    d->index = index;
}

QVariant Control::Version() const
{
    return versionArray();
}

qint32 Control::hWnd() const
{
    return qint32(quintptr(effectiveWinId()) & 0x7fffffff);
}

bool Control::Enabled() const
{
    return enabledState();
}

void Control::putEnabled(bool enabled)
{
    applyEnabled(enabled);
    notifyPut(QStringLiteral("Enabled"));
}

bool Control::enabledState() const
{
    // The control's own setting: a control on a disabled form still reads True, as a host that
    // saves and restores it expects.
    return !testAttribute(Qt::WA_ForceDisabled);
}

void Control::applyEnabled(bool enabled)
{
    QWidget::setEnabled(enabled);
}

void Control::notifyPut(const QString &name)
{
    Q_EMIT PropertyChanged(name);
}

void Control::setFrameLook(int appearance, int border)
{
    d->appearance = appearance;
    d->border = border;
    d->applyFrame();
}

int Control::frameAppearance() const
{
    return d->appearance;
}

int Control::frameBorder() const
{
    return d->border;
}

void Control::forwardMouse(QWidget *child)
{
    if (child)
        child->installEventFilter(d.get());
}

void Control::childMouseEvent(QWidget *, MouseAction, MouseArgs &) { }

QSize Control::lineSizeHint(int chars) const
{
    // The sums of QLineEdit's own size hint (text margins of one and two pixels), so that a
    // control beside a line edit in a form layout lines up with it.
    ensurePolished();
    const QFontMetrics fm = fontMetrics();
    const int iconSize = style()->pixelMetric(QStyle::PM_SmallIconSize, nullptr, this);
    const int h = qMax(fm.height(), qMax(14, iconSize - 2)) + 2;
    const int w = fm.horizontalAdvance(QLatin1Char('x')) * qMax(1, chars) + 4;
    QStyleOptionFrame option;
    option.initFrom(this);
    option.lineWidth = style()->pixelMetric(QStyle::PM_DefaultFrameWidth, nullptr, this);
    option.midLineWidth = 0;
    option.state |= QStyle::State_Sunken;
    return style()->sizeFromContents(QStyle::CT_LineEdit, &option, QSize(w, h), this);
}

void Control::paintEvent(QPaintEvent *)
{
    if (d->border == 0)
        return;
    QPainter painter(this);
    if (d->appearance == 0) {
        painter.setPen(palette().color(QPalette::Shadow));
        painter.drawRect(rect().adjusted(0, 0, -1, -1));
        return;
    }
    QStyleOptionFrame option;
    option.initFrom(this);
    option.rect = rect();
    option.lineWidth = d->frameWidth();
    option.midLineWidth = 0;
    option.state |= QStyle::State_Sunken;
    style()->drawPrimitive(QStyle::PE_PanelLineEdit, &option, &painter, this);
}

void Control::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::StyleChange)
        d->applyFrame();
    QWidget::changeEvent(event);
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
