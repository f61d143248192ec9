#include <zelkon/common/datepicker.h>
#include <zelkon/common/error.h>
#include <zelkon/common/keycodes_p.h>
#include <zelkon/common/platform.h>

#include <QApplication>
#include <QCalendarWidget>
#include <QDateTimeEdit>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QRegularExpression>
#include <QScopedValueRollback>

namespace zelkon {

namespace {

const QString allText = QStringLiteral("All");

// The picker's own format: the locale's short date, always with four-digit years, since a
// two-digit year would fold every date into one century.
QString shortDateFormat(const QLocale &locale)
{
    QString format = locale.dateFormat(QLocale::ShortFormat);
    static const QRegularExpression years(QStringLiteral("y+"));
    format.replace(years, QStringLiteral("yyyy"));
    return format;
}

// Custom formats use the platform picker's codes. Days, months ("M"), hours, minutes ("m") and
// seconds read the same in Qt; the others are translated here:
// - "t" and "tt", the half-day marker, are Qt's "AP" (Qt has no one-letter marker, and its own
//   "t" is the time zone);
// - "y" and "yyy" become Qt's two- and four-digit years;
// - "a", "A" and "z", codes to Qt only, stay the literal letters they are to the platform.
// Quoted text is kept; an unclosed quote runs to the end, as the platform reads it.
QString qtFormat(const QString &format)
{
    QString result;
    for (qsizetype i = 0; i < format.size();) {
        const QChar c = format.at(i);
        if (c == QLatin1Char('\'')) {
            const qsizetype close = format.indexOf(QLatin1Char('\''), i + 1);
            result += close < 0 ? format.mid(i) + QLatin1Char('\'') : format.mid(i, close + 1 - i);
            i = close < 0 ? format.size() : close + 1;
            continue;
        }
        qsizetype run = 1;
        while (i + run < format.size() && format.at(i + run) == c)
            ++run;
        switch (c.unicode()) {
        case 't':
            result += QLatin1String("AP");
            break;
        case 'y':
            result += run > 2 ? QLatin1String("yyyy") : QLatin1String("yy");
            break;
        case 'a':
        case 'A':
        case 'z':
            result += QLatin1Char('\'') + QString(run, c) + QLatin1Char('\'');
            break;
        default:
            result += QString(run, c);
            break;
        }
        i += run;
    }
    return result;
}

} // namespace

DatePicker::DatePicker(QWidget *parent)
    : QWidget(parent)
    , m_edit(new QDateTimeEdit(this))
    , m_all(new QLineEdit(this))
    , m_value(QDateTime(Platform::current().today(), QTime(0, 0)))
    , m_min(QDateTime(QDate(1601, 1, 1), QTime(0, 0)))
    , m_max(QDateTime(QDate(9999, 12, 31), QTime(0, 0)))
{
    setFocusPolicy(Qt::StrongFocus);
    m_edit->setObjectName(QStringLiteral("edit"));
    m_all->setObjectName(QStringLiteral("all"));
    m_all->setReadOnly(true);
    m_all->setText(allText);
    m_all->hide();
    m_edit->setCalendarPopup(true);
    m_edit->setCorrectionMode(QAbstractSpinBox::CorrectToNearestValue);

    m_edit->installEventFilter(this);
    if (auto *line = m_edit->findChild<QLineEdit *>())
        line->installEventFilter(this);
    m_all->installEventFilter(this);

    connect(m_edit, &QDateTimeEdit::dateTimeChanged, this, [this](const QDateTime &edited) {
        if (m_updating)
            return;
        // The edit shows only the sections of the format; the rest of the value is kept.
        const QDateTime value = clamped(edited);
        if (value == m_value)
            return;
        m_value = value;
        Q_EMIT Change();
    });

    applyRange();
    applyFormat();
    showValue();
    updateAccessibleNames();
}

void DatePicker::updateAccessibleNames()
{
    const QString name = accessibleName();
    const QString description
        = accessibleDescription().isEmpty() ? toolTip() : accessibleDescription();
    m_edit->setAccessibleName(name.isEmpty() ? tr("Date") : name);
    m_edit->setAccessibleDescription(description);
    m_all->setAccessibleName(name.isEmpty() ? tr("Any date") : tr("%1: any date").arg(name));
    m_all->setAccessibleDescription(description);
}

bool DatePicker::event(QEvent *event)
{
    if (event->type() == QEvent::Show || event->type() == QEvent::ToolTipChange)
        updateAccessibleNames();
    return QWidget::event(event);
}

bool DatePicker::inRange(const QDateTime &date) const
{
    return date.date() >= m_min.date() && date.date() <= m_max.date();
}

QDateTime DatePicker::clamped(const QDateTime &value) const
{
    if (value.date() < m_min.date())
        return QDateTime(m_min.date(), m_value.time());
    if (value.date() > m_max.date())
        return QDateTime(m_max.date(), m_value.time());
    return value;
}

void DatePicker::setValue(const QDateTime &value)
{
    if (!value.isValid())
        throw Error(TypeMismatch);
    const QDateTime v = clamped(value);
    if (v == m_value)
        return;
    m_value = v;
    showValue();
    Q_EMIT Change();
}

void DatePicker::setMinDate(const QDateTime &date)
{
    if (!date.isValid())
        throw Error(TypeMismatch);
    if (date.date() > m_max.date())
        throw Error(InvalidProcedureCall);
    m_min = date;
    applyRange();
    setValue(m_value);
}

void DatePicker::setMaxDate(const QDateTime &date)
{
    if (!date.isValid())
        throw Error(TypeMismatch);
    if (date.date() < m_min.date())
        throw Error(InvalidProcedureCall);
    m_max = date;
    applyRange();
    setValue(m_value);
}

void DatePicker::setCustomFormat(const QString &format)
{
    if (format == m_customFormat)
        return;
    m_customFormat = format;
    applyFormat();
}

void DatePicker::setUpDown(bool upDown)
{
    if (upDown == m_upDown)
        return;
    m_upDown = upDown;
    m_edit->setCalendarPopup(!upDown);
}

bool DatePicker::showsAll() const
{
    return m_customFormat == allText;
}

void DatePicker::showValue()
{
    const QScopedValueRollback<bool> guard(m_updating, true);
    m_edit->setDateTime(m_value);
}

void DatePicker::applyRange()
{
    const QScopedValueRollback<bool> guard(m_updating, true);
    m_edit->setDateTimeRange(QDateTime(m_min.date(), QTime(0, 0)),
                             QDateTime(m_max.date(), QTime(23, 59, 59, 999)));
    m_edit->setDateTime(m_value);
}

void DatePicker::applyFormat()
{
    QWidget *focus = QApplication::focusWidget();
    const bool hadFocus = focus && (focus == this || isAncestorOf(focus));
    if (showsAll()) {
        m_all->show();
        m_edit->hide();
        setFocusProxy(m_all);
    } else {
        {
            const QScopedValueRollback<bool> guard(m_updating, true);
            const QLocale locale = Platform::current().numberLocale();
            m_edit->setLocale(locale);
            m_edit->setDisplayFormat(m_customFormat.isEmpty() ? shortDateFormat(locale)
                                                              : qtFormat(m_customFormat));
            m_edit->setDateTime(m_value);
        }
        m_edit->show();
        m_all->hide();
        setFocusProxy(m_edit);
    }
    if (hadFocus)
        setFocus();
}

void DatePicker::hookCalendar()
{
    QCalendarWidget *calendar = m_edit->calendarWidget();
    if (!calendar)
        return;
    QWidget *popup = calendar->window();
    if (popup == m_calendarPopup || popup == window())
        return;
    popup->installEventFilter(this);
    m_calendarPopup = popup;
}

bool DatePicker::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_calendarPopup) {
        if (event->type() == QEvent::Show)
            Q_EMIT DropDown();
        else if (event->type() == QEvent::Hide)
            Q_EMIT CloseUp();
        return false;
    }
    switch (event->type()) {
    case QEvent::FocusIn:
        // A name given after the picker was shown reaches the part that takes the focus.
        updateAccessibleNames();
        break;
    case QEvent::MouseButtonPress:
        // The calendar is made the first time it may open, and watched from then on.
        hookCalendar();
        break;
    case QEvent::KeyPress: {
        hookCalendar();
        // A key travels from the focus widget to its parents; it is reported once, where it lands.
        if (watched != QApplication::focusWidget())
            break;
        auto *keyEvent = static_cast<QKeyEvent *>(event);
        qint16 code = qint16(keyCode(keyEvent));
        qint16 shift = shiftState(keyEvent->modifiers());
        const qint16 original = code;
        Q_EMIT KeyDown(code, shift);
        if (original != 0 && code == 0)
            return true;
        break;
    }
    case QEvent::MouseButtonRelease: {
        auto *mouseEvent = static_cast<QMouseEvent *>(event);
        auto *widget = static_cast<QWidget *>(watched);
        if (mouseEvent->button() == Qt::LeftButton
            && widget->rect().contains(mouseEvent->position().toPoint()))
            Q_EMIT Click();
        break;
    }
    default:
        break;
    }
    return QWidget::eventFilter(watched, event);
}

void DatePicker::resizeEvent(QResizeEvent *)
{
    m_edit->setGeometry(rect());
    m_all->setGeometry(rect());
}

QSize DatePicker::sizeHint() const
{
    return m_edit->sizeHint();
}

QSize DatePicker::minimumSizeHint() const
{
    return m_edit->minimumSizeHint();
}

} // namespace zelkon
