#include <zelkon/common/strings_p.h>
#include <zelkon/common/updown.h>

#include <QKeyEvent>
#include <QStyle>
#include <QToolButton>
#include <QWheelEvent>

namespace zelkon {

class UpDownPrivate
{
public:
    explicit UpDownPrivate(UpDown *spinner)
        : q(spinner)
        , up(new QToolButton(spinner))
        , down(new QToolButton(spinner))
    { }

    void step(qint64 delta);
    qint32 clamped(qint64 value) const;
    void updateButtons();

    UpDown *q;
    QToolButton *up;
    QToolButton *down;
    qint32 value = 0;
    qint32 min = 0;
    qint32 max = 10;
    qint32 increment = 1;
    bool wrap = false;
};

UpDown::UpDown(QWidget *parent)
    : QWidget(parent)
    , d(std::make_unique<UpDownPrivate>(this))
{
    setFocusPolicy(Qt::WheelFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred);
    for (QToolButton *button : {d->up, d->down}) {
        button->setAutoRepeat(true);
        button->setAutoRepeatDelay(400);
        button->setAutoRepeatInterval(60);
        button->setFocusPolicy(Qt::NoFocus);
        button->setAutoRaise(false);
    }
    d->up->setObjectName(QStringLiteral("up"));
    d->down->setObjectName(QStringLiteral("down"));
    d->up->setArrowType(Qt::UpArrow);
    d->down->setArrowType(Qt::DownArrow);
    d->up->setAccessibleName(loadString("increase"));
    d->down->setAccessibleName(loadString("decrease"));
    connect(d->up, &QToolButton::clicked, this, [this] {
        stepUp();
        Q_EMIT UpClick();
    });
    connect(d->down, &QToolButton::clicked, this, [this] {
        stepDown();
        Q_EMIT DownClick();
    });
    d->updateButtons();
}

UpDown::~UpDown() = default;

qint32 UpDownPrivate::clamped(qint64 v) const
{
    const qint64 low = qMin(min, max);
    const qint64 high = qMax(min, max);
    return qint32(qBound(low, v, high));
}

qint32 UpDown::Value() const
{
    return d->value;
}

void UpDown::setValue(qint32 value)
{
    const qint32 v = d->clamped(value);
    if (v == d->value)
        return;
    d->value = v;
    d->updateButtons();
    Q_EMIT Change();
}

qint32 UpDown::Min() const
{
    return d->min;
}

void UpDown::setMin(qint32 min)
{
    d->min = min;
    setValue(d->value);
    d->updateButtons();
}

qint32 UpDown::Max() const
{
    return d->max;
}

void UpDown::setMax(qint32 max)
{
    d->max = max;
    setValue(d->value);
    d->updateButtons();
}

qint32 UpDown::Increment() const
{
    return d->increment;
}

void UpDown::setIncrement(qint32 increment)
{
    d->increment = increment == 0 ? 1 : increment;
}

bool UpDown::Wrap() const
{
    return d->wrap;
}

void UpDown::setWrap(bool wrap)
{
    d->wrap = wrap;
}

void UpDownPrivate::step(qint64 delta)
{
    // With the limits given the other way round the arrows run the other way, as a spinner does.
    if (min > max)
        delta = -delta;
    const qint64 low = qMin(min, max);
    const qint64 high = qMax(min, max);
    qint64 next = qint64(value) + delta;
    if (wrap) {
        if (next > high)
            next = low;
        else if (next < low)
            next = high;
    }
    q->setValue(clamped(next));
}

void UpDown::stepUp()
{
    d->step(d->increment);
}

void UpDown::stepDown()
{
    d->step(-qint64(d->increment));
}

void UpDownPrivate::updateButtons()
{
    const qint32 low = qMin(min, max);
    const qint32 high = qMax(min, max);
    const bool ascending = min <= max;
    up->setEnabled(q->isEnabled() && (wrap || value != (ascending ? high : low)));
    down->setEnabled(q->isEnabled() && (wrap || value != (ascending ? low : high)));
}

QSize UpDown::sizeHint() const
{
    const int w = style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, this);
    return QSize(qMax(16, w), 2 * qMax(10, w));
}

QSize UpDown::minimumSizeHint() const
{
    return QSize(12, 12);
}

void UpDown::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Up:
    case Qt::Key_Right:
        stepUp();
        Q_EMIT UpClick();
        break;
    case Qt::Key_Down:
    case Qt::Key_Left:
        stepDown();
        Q_EMIT DownClick();
        break;
    default:
        QWidget::keyPressEvent(event);
        return;
    }
    event->accept();
}

void UpDown::wheelEvent(QWheelEvent *event)
{
    const int delta = event->angleDelta().y();
    if (delta > 0)
        stepUp();
    else if (delta < 0)
        stepDown();
    event->accept();
}

void UpDown::resizeEvent(QResizeEvent *)
{
    const int half = height() / 2;
    d->up->setGeometry(0, 0, width(), half);
    d->down->setGeometry(0, half, width(), height() - half);
}

void UpDown::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::EnabledChange)
        d->updateButtons();
    QWidget::changeEvent(event);
}

} // namespace zelkon
