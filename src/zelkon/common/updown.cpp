#include <zelkon/common/updown.h>

#include <QKeyEvent>
#include <QStyle>
#include <QToolButton>
#include <QWheelEvent>

namespace zelkon {

UpDown::UpDown(QWidget *parent)
    : QWidget(parent)
    , m_up(new QToolButton(this))
    , m_down(new QToolButton(this))
{
    setFocusPolicy(Qt::WheelFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred);
    for (QToolButton *button : {m_up, m_down}) {
        button->setAutoRepeat(true);
        button->setAutoRepeatDelay(400);
        button->setAutoRepeatInterval(60);
        button->setFocusPolicy(Qt::NoFocus);
        button->setAutoRaise(false);
    }
    m_up->setObjectName(QStringLiteral("up"));
    m_down->setObjectName(QStringLiteral("down"));
    m_up->setArrowType(Qt::UpArrow);
    m_down->setArrowType(Qt::DownArrow);
    m_up->setAccessibleName(tr("Increase"));
    m_down->setAccessibleName(tr("Decrease"));
    connect(m_up, &QToolButton::clicked, this, [this] {
        stepUp();
        Q_EMIT UpClick();
    });
    connect(m_down, &QToolButton::clicked, this, [this] {
        stepDown();
        Q_EMIT DownClick();
    });
    updateButtons();
}

qint32 UpDown::clamped(qint64 value) const
{
    const qint64 low = qMin(m_min, m_max);
    const qint64 high = qMax(m_min, m_max);
    return qint32(qBound(low, value, high));
}

void UpDown::setValue(qint32 value)
{
    const qint32 v = clamped(value);
    if (v == m_value)
        return;
    m_value = v;
    updateButtons();
    Q_EMIT Change();
}

void UpDown::setMin(qint32 min)
{
    m_min = min;
    setValue(m_value);
    updateButtons();
}

void UpDown::setMax(qint32 max)
{
    m_max = max;
    setValue(m_value);
    updateButtons();
}

void UpDown::setIncrement(qint32 increment)
{
    m_increment = increment == 0 ? 1 : increment;
}

void UpDown::step(qint64 delta)
{
    // With the limits given the other way round the arrows run the other way, as a spinner does.
    if (m_min > m_max)
        delta = -delta;
    const qint64 low = qMin(m_min, m_max);
    const qint64 high = qMax(m_min, m_max);
    qint64 next = qint64(m_value) + delta;
    if (m_wrap) {
        if (next > high)
            next = low;
        else if (next < low)
            next = high;
    }
    setValue(clamped(next));
}

void UpDown::stepUp()
{
    step(m_increment);
}

void UpDown::stepDown()
{
    step(-qint64(m_increment));
}

void UpDown::updateButtons()
{
    const qint32 low = qMin(m_min, m_max);
    const qint32 high = qMax(m_min, m_max);
    const bool ascending = m_min <= m_max;
    m_up->setEnabled(isEnabled() && (m_wrap || m_value != (ascending ? high : low)));
    m_down->setEnabled(isEnabled() && (m_wrap || m_value != (ascending ? low : high)));
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
    m_up->setGeometry(0, 0, width(), half);
    m_down->setGeometry(0, half, width(), height() - half);
}

void UpDown::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::EnabledChange)
        updateButtons();
    QWidget::changeEvent(event);
}

} // namespace zelkon
