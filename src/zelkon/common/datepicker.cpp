#include <zelkon/common/datepicker.h>
#include <zelkon/common/error.h>
#include <zelkon/common/keycodes_p.h>
#include <zelkon/common/platform.h>
#include <zelkon/common/strings_p.h>
#include <zelkon/common/variants.h>

#include <QApplication>
#include <QCalendarWidget>
#include <QDateTimeEdit>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPointer>
#include <QRegularExpression>
#include <QScopedValueRollback>

namespace zelkon {

namespace {

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

// The edit shows the value's own date and time of day. It holds them as UTC, which has no zone to
// look up: every local date and time asks the system for its zone, and a local time that falls
// into a daylight saving gap would be moved.
QDateTime shown(const QDateTime &value)
{
    return QDateTime(value.date(), value.time(), Qt::UTC);
}

} // namespace

class DatePickerPrivate
{
public:
    explicit DatePickerPrivate(DatePicker *picker)
        : q(picker)
        , edit(new QDateTimeEdit(picker))
        , all(new QLineEdit(picker))
        , value(QDateTime(Platform::current().today(), QTime(0, 0)))
        , min(QDateTime(QDate(1601, 1, 1), QTime(0, 0)))
        , max(QDateTime(QDate(9999, 12, 31), QTime(0, 0)))
    { }

    QDateTime clamped(const QDateTime &date) const;
    void showValue();
    void applyFormat();
    void applyRange();
    void hookCalendar();

    DatePicker *q;
    QDateTimeEdit *edit;
    QLineEdit *all;
    QDateTime value;
    QDateTime min;
    QDateTime max;
    QString customFormat;
    bool upDown = false;
    bool updating = false;
    QPointer<QObject> calendarPopup;
};

DatePicker::DatePicker(QWidget *parent)
    : QWidget(parent)
    , d(std::make_unique<DatePickerPrivate>(this))
{
    setFocusPolicy(Qt::StrongFocus);
    d->edit->setObjectName(QStringLiteral("edit"));
    d->all->setObjectName(QStringLiteral("all"));
    d->all->setReadOnly(true);
    d->all->setText(allText());
    d->all->hide();
    d->edit->setTimeSpec(Qt::UTC);
    d->edit->setCalendarPopup(true);
    d->edit->setCorrectionMode(QAbstractSpinBox::CorrectToNearestValue);

    d->edit->installEventFilter(this);
    if (auto *line = d->edit->findChild<QLineEdit *>())
        line->installEventFilter(this);
    d->all->installEventFilter(this);

    connect(d->edit, &QDateTimeEdit::dateTimeChanged, this, [this](const QDateTime &edited) {
        if (d->updating)
            return;
        // The edit shows only the sections of the format; the rest of the value is kept.
        const QDateTime value = d->clamped(QDateTime(edited.date(), edited.time()));
        if (value == d->value)
            return;
        d->value = value;
        Q_EMIT Change();
    });

    d->applyRange();
    d->applyFormat();
    d->showValue();
    updateAccessibleNames();
}

DatePicker::~DatePicker() = default;

QDateTime DatePicker::Value() const
{
    return d->value;
}

QDateTime DatePicker::MinDate() const
{
    return d->min;
}

QDateTime DatePicker::MaxDate() const
{
    return d->max;
}

QString DatePicker::CustomFormat() const
{
    return d->customFormat;
}

bool DatePicker::UpDown() const
{
    return d->upDown;
}

qint16 DatePicker::Year() const
{
    return qint16(d->value.date().year());
}

qint16 DatePicker::Month() const
{
    return qint16(d->value.date().month());
}

qint16 DatePicker::Day() const
{
    return qint16(d->value.date().day());
}

qint16 DatePicker::DayOfWeek() const
{
    return qint16(d->value.date().dayOfWeek() % 7 + 1);
}

qint16 DatePicker::Hour() const
{
    return qint16(d->value.time().hour());
}

qint16 DatePicker::Minute() const
{
    return qint16(d->value.time().minute());
}

qint16 DatePicker::Second() const
{
    return qint16(d->value.time().second());
}

QDateTimeEdit *DatePicker::dateEdit() const
{
    return d->edit;
}

void DatePicker::updateAccessibleNames()
{
    const QString name = accessibleName();
    const QString description
        = accessibleDescription().isEmpty() ? toolTip() : accessibleDescription();
    d->edit->setAccessibleName(name.isEmpty() ? loadString("date") : name);
    d->edit->setAccessibleDescription(description);
    d->all->setAccessibleName(name.isEmpty() ? loadString("anyDate")
                                             : loadString("namedAnyDate").arg(name));
    d->all->setAccessibleDescription(description);
}

bool DatePicker::event(QEvent *event)
{
    if (event->type() == QEvent::Show || event->type() == QEvent::ToolTipChange)
        updateAccessibleNames();
    return QWidget::event(event);
}

bool DatePicker::inRange(const QDateTime &date) const
{
    return date.date() >= d->min.date() && date.date() <= d->max.date();
}

QDateTime DatePickerPrivate::clamped(const QDateTime &date) const
{
    if (date.date() < min.date())
        return QDateTime(min.date(), value.time());
    if (date.date() > max.date())
        return QDateTime(max.date(), value.time());
    return date;
}

void DatePicker::setValue(const QDateTime &value)
{
    if (!value.isValid())
        throw Error(TypeMismatch);
    const QDateTime v = d->clamped(value);
    if (v == d->value)
        return;
    d->value = v;
    d->showValue();
    Q_EMIT Change();
}

void DatePicker::setMinDate(const QDateTime &date)
{
    if (!date.isValid())
        throw Error(TypeMismatch);
    if (date.date() > d->max.date())
        throw Error(InvalidProcedureCall);
    d->min = date;
    d->applyRange();
    setValue(d->value);
}

void DatePicker::setMaxDate(const QDateTime &date)
{
    if (!date.isValid())
        throw Error(TypeMismatch);
    if (date.date() < d->min.date())
        throw Error(InvalidProcedureCall);
    d->max = date;
    d->applyRange();
    setValue(d->value);
}

void DatePicker::setCustomFormat(const QString &format)
{
    if (format == d->customFormat)
        return;
    d->customFormat = format;
    d->applyFormat();
}

void DatePicker::setUpDown(bool upDown)
{
    if (upDown == d->upDown)
        return;
    d->upDown = upDown;
    d->edit->setCalendarPopup(!upDown);
}

bool DatePicker::showsAll() const
{
    return d->customFormat == allText();
}

void DatePickerPrivate::showValue()
{
    const QScopedValueRollback<bool> guard(updating, true);
    edit->setDateTime(shown(value));
}

void DatePickerPrivate::applyRange()
{
    const QScopedValueRollback<bool> guard(updating, true);
    edit->setDateTimeRange(QDateTime(min.date(), QTime(0, 0), Qt::UTC),
                           QDateTime(max.date(), QTime(23, 59, 59, 999), Qt::UTC));
    edit->setDateTime(shown(value));
}

void DatePickerPrivate::applyFormat()
{
    QWidget *focus = QApplication::focusWidget();
    const bool hadFocus = focus && (focus == q || q->isAncestorOf(focus));
    if (q->showsAll()) {
        all->show();
        edit->hide();
        q->setFocusProxy(all);
    } else {
        {
            const QScopedValueRollback<bool> guard(updating, true);
            const QLocale locale = Platform::current().numberLocale();
            edit->setLocale(locale);
            edit->setDisplayFormat(customFormat.isEmpty() ? shortDateFormat(locale)
                                                          : qtFormat(customFormat));
            edit->setDateTime(shown(value));
        }
        edit->show();
        all->hide();
        q->setFocusProxy(edit);
    }
    if (hadFocus)
        q->setFocus();
}

void DatePickerPrivate::hookCalendar()
{
    QCalendarWidget *calendar = edit->calendarWidget();
    if (!calendar)
        return;
    QWidget *popup = calendar->window();
    if (popup == calendarPopup || popup == q->window())
        return;
    popup->installEventFilter(q);
    calendarPopup = popup;
}

bool DatePicker::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == d->calendarPopup) {
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
        d->hookCalendar();
        break;
    case QEvent::KeyPress: {
        d->hookCalendar();
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
    d->edit->setGeometry(rect());
    d->all->setGeometry(rect());
}

QSize DatePicker::sizeHint() const
{
    return d->edit->sizeHint();
}

QSize DatePicker::minimumSizeHint() const
{
    return d->edit->minimumSizeHint();
}

} // namespace zelkon
