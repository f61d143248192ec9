#include <zelkon/common/conversions.h>
#include <zelkon/common/datepicker.h>
#include <zelkon/common/extent_p.h>
#include <zelkon/common/ignoreerrors_p.h>
#include <zelkon/common/keycodes_p.h>
#include <zelkon/common/platform.h>
#include <zelkon/common/propertybag.h>
#include <zelkon/common/registry.h>
#include <zelkon/common/strings_p.h>
#include <zelkon/common/updown.h>
#include <zelkon/reldate/reldate.h>

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QLineEdit>
#include <QMenu>
#include <QPainter>
#include <QScopedValueRollback>
#include <QStyle>
#include <QStyleOptionFrame>

#include <limits>

namespace zelkon {

ZELKON_REGISTER_CONTROL(RelDate);

namespace {

const QString allText = QStringLiteral("All");

// "All" is the one marker of no date bound, compared as a string and nothing else.
bool isAll(const QVariant &value)
{
    return value.metaType().id() == QMetaType::QString && value.toString() == allText;
}

QDateTime today()
{
    return QDateTime(Platform::current().today(), QTime(0, 0));
}

QString typeName(const QObject *object)
{
    const QString name = QString::fromLatin1(object->metaObject()->className());
    const qsizetype colon = name.lastIndexOf(QLatin1String("::"));
    return colon < 0 ? name : name.mid(colon + 2);
}

const QDateTime defaultMinDate(QDate(1601, 1, 1), QTime(0, 0));
const QDateTime defaultMaxDate(QDate(9999, 12, 31), QTime(0, 0));

} // namespace

RelDate::RelDate(QWidget *parent)
    : Control(parent)
    , m_surface(new QWidget(this))
    , m_dateView(new DatePicker(m_surface))
    , m_dateLong(new QLineEdit(m_surface))
    , m_dateLongUD(new zelkon::UpDown(m_surface))
    , m_chRel(new QCheckBox(m_surface))
    , m_popUpDate(new QMenu(this))
{
    m_dateView->setObjectName(QStringLiteral("DateView"));
    m_dateLong->setObjectName(QStringLiteral("DateLong"));
    m_dateLongUD->setObjectName(QStringLiteral("DateLongUD"));
    m_chRel->setObjectName(QStringLiteral("ChRel"));
    m_popUpDate->setObjectName(QStringLiteral("PopUpDate"));

    // Any day count is taken by the spinner; the date range is checked by its change handler.
    m_dateLongUD->setMin(std::numeric_limits<qint32>::min());
    m_dateLongUD->setMax(std::numeric_limits<qint32>::max());
    m_chRel->setTristate(false);

    for (int i = 0; i < 2; ++i) {
        m_currentDate[i] = m_popUpDate->addAction(loadString(203));
        m_currentDate[i]->setObjectName(QStringLiteral("CurrentDate"));
        m_currentDate[i]->setProperty("Index", i);
        connect(m_currentDate[i], &QAction::triggered, this, [this] { menuCurrentDateChosen(); });
    }
    m_currentDate[0]->setVisible(false);
    m_dateAll = m_popUpDate->addAction(loadString(204));
    m_dateAll->setObjectName(QStringLiteral("DateAll"));
    m_mnuRel = m_popUpDate->addAction(QString());
    m_mnuRel->setObjectName(QStringLiteral("mnuRel"));
    m_mnuRel->setVisible(m_menuStateVisible);

    m_dateView->setToolTip(loadString(201));
    m_dateLong->setToolTip(loadString(202));
    m_dateLongUD->setToolTip(loadString(202));
    m_chRel->setToolTip(loadString(207));
    updateAccessibleNames();

    connect(m_dateAll, &QAction::triggered, this, [this] { menuDateAllChosen(); });
    connect(m_mnuRel, &QAction::triggered, this, [this] { menuRelChosen(); });
    connect(m_chRel, &QCheckBox::stateChanged, this, [this] { chRelClicked(); });
    connect(m_dateLong, &QLineEdit::textChanged, this, [this] { dateLongChanged(); });
    connect(m_dateLongUD, &zelkon::UpDown::Change, this, [this] { dateLongUDChanged(); });
    connect(m_dateView, &DatePicker::Change, this, [this] { dateViewChanged(); });
    connect(m_dateView, &DatePicker::CloseUp, this, [this] { dateViewAdopted(); });
    connect(m_dateView, &DatePicker::DropDown, this, [this] { dateViewLeftAll(); });
    connect(m_dateView, &DatePicker::Click, this, [this] { dateViewLeftAll(); });
    // The menu's own action runs after the menu has hidden, so the closing Change waits for it.
    connect(m_popUpDate, &QMenu::aboutToHide, this, [this] {
        QMetaObject::invokeMethod(
            this,
            [this] {
                if (!m_changeAfterMenu)
                    return;
                m_changeAfterMenu = false;
                Q_EMIT Change();
            },
            Qt::QueuedConnection);
    });

    for (QWidget *child : {static_cast<QWidget *>(m_dateView), static_cast<QWidget *>(m_dateLong),
                           static_cast<QWidget *>(m_dateLongUD), static_cast<QWidget *>(m_chRel)})
        watchChild(child);

    m_mnuRel->setText(loadString(m_relative ? 206 : 205));
    showMode();
    layoutWidgets();
}

RelDate::~RelDate() = default;

// ---- the model ------------------------------------------------------------------------------

bool RelDate::Relative()
{
    showMode();
    return m_relative;
}

void RelDate::setRelative(bool relative)
{
    if (relative == m_relative)
        return;
    if (!isAll(m_date)) {
        // The value of the mode being left is carried over, so the calendar day stays the same.
        if (relative)
            attempt(
                [&] { m_dayCount = CLng(DateDiff(QStringLiteral("d"), today(), CDate(m_date))); });
        else
            attempt([&] { m_date = DateAdd(QStringLiteral("d"), m_dayCount, today()); });
    }
    m_relative = relative;
    const Qt::CheckState state = relative ? Qt::Checked : Qt::Unchecked;
    if (m_chRel->checkState() != state)
        m_chRel->setCheckState(state);
    showMode();
    propagateMode();
    m_mnuRel->setText(loadString(m_relative ? 206 : 205));
    Q_EMIT Change();
    Q_EMIT PropertyChanged(QStringLiteral("Relative"));
    Q_EMIT PropertyChanged(QStringLiteral("RetDate"));
    refreshView();
}

QVariant RelDate::RetDate()
{
    if (m_relative && !isAll(m_date))
        attempt([&] { m_date = DateAdd(QStringLiteral("d"), m_dayCount, today()); });
    return m_date;
}

void RelDate::setRetDate(const QVariant &value)
{
    if (!isAll(value)) {
        ignoreErrors({
            [&] { m_dateView->setCustomFormat(m_customFormat); },
            [&] {
                const qint32 days = CLng(DateDiff(QStringLiteral("d"), today(), CDate(value)));
                m_dateLongUD->setValue(days);
                setDateLongText(QString::number(days));
            },
            [&] { m_dateView->setValue(CDate(value)); },
            // Read back from the picker, so a date outside its range is stored clamped.
            [&] { m_date = m_dateView->Value(); },
            [&] { m_dayCount = m_dateLongUD->Value(); },
        });
    } else {
        if (!m_allowAll)
            return;
        ignoreErrors({
            [&] { m_dateView->setCustomFormat(allText); },
            [&] { setDateLongText(allText); },
            [&] { m_date = allText; },
        });
        synchronizeValue();
    }
    Q_EMIT PropertyChanged(QStringLiteral("RetDate"));
    refreshView();
}

qint32 RelDate::RetNum()
{
    if (!m_relative && !isAll(m_date))
        attempt([&] { m_dayCount = CLng(DateDiff(QStringLiteral("d"), today(), CDate(m_date))); });
    return m_dayCount;
}

void RelDate::setRetNum(qint32 days)
{
    // The stored date is not written here: the spinner (relative) or the picker (absolute) carries
    // the new count into it through its own change handler.
    ignoreErrors({
        [&] { m_dayCount = days; },
        [&] { m_dateLongUD->setValue(days); },
        [&] { m_dateView->setValue(DateAdd(QStringLiteral("d"), days, today())); },
    });
    Q_EMIT PropertyChanged(QStringLiteral("RetNum"));
    refreshView();
}

// ---- plain properties -----------------------------------------------------------------------

void RelDate::setAllowAll(bool allow)
{
    m_allowAll = allow;
    Q_EMIT PropertyChanged(QStringLiteral("AllowAll"));
}

void RelDate::setAppearance(qint32 appearance)
{
    m_appearance = appearance;
    Q_EMIT PropertyChanged(QStringLiteral("Appearance"));
    layoutWidgets();
}

void RelDate::setBorder(qint32 border)
{
    m_border = border;
    Q_EMIT PropertyChanged(QStringLiteral("Border"));
    layoutWidgets();
}

void RelDate::setSynchValue(bool synch)
{
    m_synchValue = synch;
    synchronizeValue();
    Q_EMIT PropertyChanged(QStringLiteral("SynchValue"));
}

// A partner name that no longer names a control of the form is forgotten when it is read.
QString RelDate::livePartnerName(QString &field, const QString &property)
{
    if (!field.isEmpty() && !findPartner(field)) {
        field.clear();
        Q_EMIT PropertyChanged(property);
    }
    return field;
}

void RelDate::putPartnerName(QString &field, const QString &name, const QString &property)
{
    field = findPartner(name) ? name : QString();
    synchronizeValue();
    Q_EMIT PropertyChanged(property);
}

QString RelDate::TopControl()
{
    return livePartnerName(m_topControl, QStringLiteral("TopControl"));
}

void RelDate::setTopControl(const QString &name)
{
    putPartnerName(m_topControl, name, QStringLiteral("TopControl"));
}

QString RelDate::BootControl()
{
    return livePartnerName(m_bootControl, QStringLiteral("BootControl"));
}

void RelDate::setBootControl(const QString &name)
{
    putPartnerName(m_bootControl, name, QStringLiteral("BootControl"));
}

void RelDate::setGlobalSynchro(qint32 synchro)
{
    m_globalSynchro = synchro;
    Q_EMIT PropertyChanged(QStringLiteral("GlobalSynchro"));
}

void RelDate::setMenuStateVisible(bool visible)
{
    m_menuStateVisible = visible;
    m_mnuRel->setVisible(visible);
    Q_EMIT PropertyChanged(QStringLiteral("MenuStateVisible"));
}

void RelDate::setCheckBoxState(qint32 state)
{
    m_checkBoxState = state;
    Q_EMIT PropertyChanged(QStringLiteral("CheckBoxState"));
    layoutWidgets();
}

// The format the host gave is kept apart from the picker's, which reads "All" while no date is
// set, so that saving a control that shows "All" does not turn "All" into its format.
void RelDate::setCustomFormat(const QString &format)
{
    m_customFormat = format;
    attempt([&] { m_dateView->setCustomFormat(format); });
    Q_EMIT PropertyChanged(QStringLiteral("CustomFormat"));
}

bool RelDate::Enabled() const
{
    return !testAttribute(Qt::WA_ForceDisabled);
}

void RelDate::setControlEnabled(bool enabled)
{
    QWidget::setEnabled(enabled);
    for (QWidget *child :
         {static_cast<QWidget *>(m_chRel), static_cast<QWidget *>(m_dateLong),
          static_cast<QWidget *>(m_dateLongUD), static_cast<QWidget *>(m_dateView)})
        child->setEnabled(enabled);
    Q_EMIT PropertyChanged(QStringLiteral("Enabled"));
}

QDateTime RelDate::MaxDate() const
{
    return m_dateView->MaxDate();
}

void RelDate::setMaxDate(const QDateTime &date)
{
    attempt([&] { m_dateView->setMaxDate(date); });
    Q_EMIT PropertyChanged(QStringLiteral("MaxDate"));
}

QDateTime RelDate::MinDate() const
{
    return m_dateView->MinDate();
}

void RelDate::setMinDate(const QDateTime &date)
{
    attempt([&] { m_dateView->setMinDate(date); });
    Q_EMIT PropertyChanged(QStringLiteral("MinDate"));
}

bool RelDate::UpDown() const
{
    return m_dateView->UpDown();
}

void RelDate::setUpDown(bool upDown)
{
    m_dateView->setUpDown(upDown);
    Q_EMIT PropertyChanged(QStringLiteral("UpDown"));
}

// The date parts describe what the picker shows, whatever the mode.
qint16 RelDate::YearDate() const
{
    return m_dateView->Year();
}

qint16 RelDate::MonthDate() const
{
    return m_dateView->Month();
}

qint16 RelDate::DayOfMonth() const
{
    return m_dateView->Day();
}

qint16 RelDate::DayOfWeek() const
{
    return m_dateView->DayOfWeek();
}

qint16 RelDate::HourDate() const
{
    return m_dateView->Hour();
}

qint16 RelDate::MinuteDate() const
{
    return m_dateView->Minute();
}

qint16 RelDate::SecondDate() const
{
    return m_dateView->Second();
}

// ---- user gestures --------------------------------------------------------------------------

void RelDate::chRelClicked()
{
    // Switching the mode raises Change itself; a box that agrees with the mode changes nothing.
    switch (m_chRel->checkState()) {
    case Qt::Unchecked:
        if (m_relative)
            setRelative(false);
        break;
    case Qt::Checked:
        if (!m_relative)
            setRelative(true);
        break;
    default:
        Q_EMIT Change();
        break;
    }
}

void RelDate::menuRelChosen()
{
    m_chRel->setCheckState(m_chRel->checkState() == Qt::Checked ? Qt::Unchecked : Qt::Checked);
    // A second Change for the same toggle: hosts written against this control count on it.
    Q_EMIT Change();
}

void RelDate::menuCurrentDateChosen()
{
    ignoreErrors({
        [&] { m_dateLongUD->setValue(0); },
        [&] { m_dateView->setCustomFormat(m_customFormat); },
        [&] { m_dateView->setValue(today()); },
        [&] { m_dayCount = 0; },
        [&] { m_date = today(); },
    });
    refreshView();
    synchronizeValue();
    Q_EMIT Change();
}

void RelDate::menuDateAllChosen()
{
    ignoreErrors({
        [&] { m_date = allText; },
        [&] { m_dateView->setCustomFormat(allText); },
        [&] { setDateLongText(allText); },
    });
    synchronizeValue();
    Q_EMIT Change();
}

void RelDate::dateLongChanged()
{
    if (m_dateLongGuard)
        return;
    const QScopedValueRollback<bool> guard(m_dateLongGuard, true);
    const QString text = m_dateLong->text();
    if (text == allText)
        return;
    const QString previous = QString::number(m_dayCount);
    qint32 days = 0;
    QDateTime date;
    if (!IsNumeric(text) || !attempt([&] {
            days = CLng(text);
            // Day of year adds whole days just as "d" does.
            date = DateAdd(QStringLiteral("y"), days, today());
        })
        || !m_dateView->inRange(date)) {
        m_dateLong->setText(previous);
        return;
    }
    attempt([&] { m_dateLongUD->setValue(days); });
    Q_EMIT Change();
    // Rewritten from the count, so "+5" or " 5" reads "5".
    m_dateLong->setText(QString::number(m_dayCount));
}

void RelDate::dateLongUDChanged()
{
    if (m_dateLongUDGuard)
        return;
    const QScopedValueRollback<bool> guard(m_dateLongUDGuard, true);
    const qint32 days = m_dateLongUD->Value();
    QDateTime date;
    // The count lands on a day at midnight; the bounds count by calendar day, as the picker
    // clamps, so a bound with a time of day still admits its own day.
    if (!attempt([&] { date = DateAdd(QStringLiteral("y"), days, today()); })
        || !m_dateView->inRange(date)) {
        attempt([&] { m_dateLongUD->setValue(m_dayCount); });
        return;
    }
    m_dayCount = days;
    // The day-count field follows its spinner, as a buddy field does.
    setDateLongText(QString::number(days));
    if (m_loading || !m_relative)
        return;
    ignoreErrors({
        [&] { m_dateView->setCustomFormat(m_customFormat); },
        [&] { m_date = DateAdd(QStringLiteral("d"), m_dayCount, today()); },
        [&] { m_dateView->setValue(CDate(m_date)); },
    });
    synchronizeValue();
    Q_EMIT Change();
}

void RelDate::dateViewChanged()
{
    // While a saved form is being opened its partners may not exist yet, so nothing is taken
    // from the picker then: the restore step sets the value itself.
    if (m_loading || m_relative)
        return;
    ignoreErrors({
        [&] { m_dateView->setCustomFormat(m_customFormat); },
        [&] { m_date = m_dateView->Value(); },
        [&] {
            m_dateLongUD->setValue(CLng(DateDiff(QStringLiteral("d"), today(), CDate(m_date))));
        },
        [&] { m_dayCount = m_dateLongUD->Value(); },
    });
    synchronizeValue();
    Q_EMIT Change();
}

void RelDate::dateViewAdopted()
{
    if (m_loading)
        return;
    const QDateTime shown = m_dateView->Value();
    if (!isAll(m_date) && m_date.metaType().id() == QMetaType::QDateTime
        && m_date.toDateTime() == shown)
        return;
    m_date = shown;
    synchronizeValue();
    Q_EMIT Change();
}

void RelDate::dateViewLeftAll()
{
    if (m_loading || !isAll(m_date))
        return;
    ignoreErrors({
        [&] { m_dateView->setCustomFormat(m_customFormat); },
        [&] { m_date = m_dateView->Value(); },
        [&] {
            m_dateLongUD->setValue(CLng(DateDiff(QStringLiteral("d"), today(), CDate(m_date))));
        },
    });
    synchronizeValue();
    Q_EMIT Change();
}

void RelDate::popUpMenu(const QPoint &globalPos, bool changeAfter)
{
    if (m_popUpDate->isVisible())
        return;
    m_currentDate[1]->setVisible(true);
    m_currentDate[0]->setVisible(false);
    m_dateAll->setVisible(m_allowAll);
    m_changeAfterMenu = changeAfter;
    m_popUpDate->popup(globalPos);
}

bool RelDate::mouseEvent(QWidget *child, QWidget *watched, QMouseEvent *event)
{
    const MouseArgs args = mouseArgs(event);
    const QPointF at = watched->mapTo(child, event->position());
    // By reference: the host may change them, and what follows sees the change.
    qint16 button = args.Button;
    qint16 shift = args.Shift;
    float x = float(at.x());
    float y = float(at.y());
    switch (event->type()) {
    case QEvent::MouseMove:
        if (child == m_dateLong) {
            Q_EMIT MouseMove();
            Q_EMIT MouseMoveXY(button, shift, x, y);
        } else if (child == m_chRel) {
            Q_EMIT MouseMoveXY(button, shift, x, y);
        } else {
            Q_EMIT MouseMoveXY(button, shift, x, y);
            Q_EMIT MouseMove();
        }
        return false;
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
        Q_EMIT MouseDown(button, shift, x, y);
        if (child == m_dateLong && button == RightButtonCode) {
            popUpMenu(event->globalPosition().toPoint(), false);
            return true;
        }
        if (child == m_dateLongUD && isAll(m_date)) {
            ignoreErrors({
                [&] { m_dateView->setCustomFormat(m_customFormat); },
                [&] {
                    setDateLongText(QString::number(
                        DateDiff(QStringLiteral("d"), today(), m_dateView->Value())));
                },
            });
        }
        return false;
    case QEvent::MouseButtonRelease:
        Q_EMIT MouseUp(button, shift, x, y);
        if ((child == m_dateLongUD || child == m_dateView) && button == RightButtonCode) {
            popUpMenu(event->globalPosition().toPoint(), true);
            return true;
        }
        return false;
    default:
        return false;
    }
}

bool RelDate::keyPressed(QKeyEvent *event)
{
    const int code = keyCode(event);
    if (code == KeyReturn) {
        Platform::current().sendKeys(QStringLiteral("{TAB}"));
        return true;
    }
    // Exactly Ctrl: Ctrl+Shift+R and the like are left to the widget.
    if (shiftState(event->modifiers()) != CtrlKey)
        return false;
    switch (code) {
    case KeyA:
        if (!m_allowAll)
            return false;
        menuDateAllChosen();
        return true;
    case KeyA + ('R' - 'A'):
        menuRelChosen();
        return true;
    case Key0:
        menuCurrentDateChosen();
        return true;
    default:
        return false;
    }
}

bool RelDate::eventFilter(QObject *watched, QEvent *event)
{
    QWidget *child = namedChildOf(watched);
    if (!child)
        return Control::eventFilter(watched, event);
    switch (event->type()) {
    case QEvent::FocusIn:
        // A name the host gave after the form was shown is read when a part takes the focus.
        updateAccessibleNames();
        break;
    case QEvent::ContextMenu:
        // The widgets' own edit menus would cover the control's menu.
        return true;
    case QEvent::MouseMove:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseButtonRelease: {
        auto *mouse = static_cast<QMouseEvent *>(event);
        // A mouse event that a widget ignores travels on to its parents: report it once.
        if (m_lastMouseType == event->type() && m_lastMouseTime == mouse->timestamp()
            && m_lastMousePos == mouse->globalPosition())
            return false;
        m_lastMouseType = event->type();
        m_lastMouseTime = mouse->timestamp();
        m_lastMousePos = mouse->globalPosition();
        return mouseEvent(child, static_cast<QWidget *>(watched), mouse);
    }
    case QEvent::KeyPress:
        if (watched == QApplication::focusWidget())
            return keyPressed(static_cast<QKeyEvent *>(event));
        break;
    default:
        break;
    }
    return Control::eventFilter(watched, event);
}

// ---- partners on the form -------------------------------------------------------------------

Control *RelDate::findPartner(const QString &name) const
{
    if (name.isEmpty())
        return nullptr;
    QString base = name;
    bool indexed = false;
    qint16 index = -1;
    const qsizetype open = name.indexOf(QLatin1Char('('));
    if (open >= 0) {
        const qsizetype close = name.indexOf(QLatin1Char(')'));
        const qsizetype length = close - open - 1;
        if (close < 0 || length < 0)
            return nullptr;
        const QString indexText = name.mid(open + 1, length);
        if (!IsNumeric(indexText) || !attempt([&] { index = CInt(indexText); }))
            return nullptr;
        indexed = true;
        base = name.left(open);
    }
    const QList<Control *> controls = Control::formControls(parentWidget());
    for (Control *control : controls) {
        if (control->objectName().compare(base, Qt::CaseInsensitive) != 0
            || typeName(control) != QLatin1String("RelDate"))
            continue;
        // The first same-named control ends the walk when no index is asked for, even when it is
        // an array member and a later control would match.
        if (!indexed)
            return control->Index() == -1 ? control : nullptr;
        if (control->Index() == index)
            return control;
    }
    return nullptr;
}

void RelDate::synchronizeValue()
{
    if (m_synchronizing || !m_synchValue)
        return;
    const QScopedValueRollback<bool> guard(m_synchronizing, true);
    if (isAll(m_date))
        return;
    // The upper bound first: with crossed bounds the lower one wins.
    if (!m_topControl.isEmpty()) {
        if (Control *top = findPartner(m_topControl)) {
            attempt([&] {
                const QVariant bound = top->property("RetDate");
                if (!isAll(bound) && CDate(m_date) > CDate(bound))
                    setRetDate(bound);
            });
        } else {
            setTopControl(QString());
        }
    }
    if (!m_bootControl.isEmpty()) {
        if (Control *bottom = findPartner(m_bootControl)) {
            attempt([&] {
                const QVariant bound = bottom->property("RetDate");
                if (!isAll(bound) && CDate(m_date) < CDate(bound))
                    setRetDate(bound);
            });
        } else {
            setBootControl(QString());
        }
    }
}

void RelDate::propagateMode()
{
    const bool relative = m_relative;
    const QList<Control *> controls = Control::formControls(parentWidget());
    for (Control *control : controls) {
        if (typeName(control) != QLatin1String("RelDate"))
            continue;
        // A follower switches in turn and propagates again; the cascade ends at controls that
        // already have the mode.
        attempt([&] {
            if (CLng(control->property("GlobalSynchro")) == srdSynchro)
                control->setProperty("Relative", relative);
        });
    }
}

// ---- persistence ----------------------------------------------------------------------------

void RelDate::WriteProperties(PropertyBag &bag)
{
    const QDateTime now = today();
    ignoreErrors({
        [&] { bag.WriteProperty(QStringLiteral("AllowAll"), m_allowAll, true); },
        [&] { bag.WriteProperty(QStringLiteral("Relative"), Relative(), true); },
        [&] { bag.WriteProperty(QStringLiteral("RetNum"), RetNum(), qint32(0)); },
        // A date equal to the day of saving is not kept and comes back as the day of loading.
        [&] { bag.WriteProperty(QStringLiteral("RetDate"), RetDate(), now); },
        [&] {
            bag.WriteProperty(QStringLiteral("CheckBoxState"), m_checkBoxState,
                              qint32(rbsNotVisible));
        },
        [&] { bag.WriteProperty(QStringLiteral("Enabled"), Enabled(), true); },
        [&] {
            bag.WriteProperty(QStringLiteral("GlobalSynchro"), m_globalSynchro,
                              qint32(srdNotSynchro));
        },
        [&] { bag.WriteProperty(QStringLiteral("TopControl"), TopControl(), QString()); },
        [&] { bag.WriteProperty(QStringLiteral("BootControl"), BootControl(), QString()); },
        [&] { bag.WriteProperty(QStringLiteral("CustomFormat"), m_customFormat, QString()); },
        [&] { bag.WriteProperty(QStringLiteral("SynchValue"), m_synchValue, false); },
        [&] { bag.WriteProperty(QStringLiteral("MenuStateVisible"), m_menuStateVisible, false); },
        [&] { bag.WriteProperty(QStringLiteral("MaxDate"), MaxDate(), defaultMaxDate); },
        [&] { bag.WriteProperty(QStringLiteral("MinDate"), MinDate(), defaultMinDate); },
        [&] { bag.WriteProperty(QStringLiteral("UpDown"), UpDown(), false); },
        [&] { writeExtent(*this, bag); },
        [&] { bag.WriteProperty(QStringLiteral("Border"), m_border, qint32(1)); },
        [&] { bag.WriteProperty(QStringLiteral("Appearance"), m_appearance, qint32(1)); },
    });
}

void RelDate::ReadProperties(PropertyBag &bag)
{
    const QScopedValueRollback<bool> loading(m_loading, true);
    const QDateTime now = today();
    const auto read = [&bag](const char *key, const QVariant &defaultValue) {
        return bag.ReadProperty(QString::fromLatin1(key), defaultValue);
    };
    ignoreErrors({
        [&] { m_allowAll = CBool(read("AllowAll", true)); },
        [&] { m_relative = CBool(read("Relative", true)); },
        [&] { m_dayCount = CLng(read("RetNum", qint32(0))); },
        [&] {
            const QVariant date = read("RetDate", now);
            m_date = isAll(date) ? date : QVariant(CDate(date));
        },
        [&] { m_checkBoxState = CLng(read("CheckBoxState", qint32(rbsNotVisible))); },
        [&] { m_border = CLng(read("Border", qint32(1))); },
        [&] { m_appearance = CLng(read("Appearance", qint32(1))); },
        [&] {
            QWidget::setEnabled(CBool(read("Enabled", true)));
            for (QWidget *child :
                 {static_cast<QWidget *>(m_dateView), static_cast<QWidget *>(m_dateLong),
                  static_cast<QWidget *>(m_dateLongUD), static_cast<QWidget *>(m_chRel)})
                child->setEnabled(Enabled());
        },
        [&] { m_globalSynchro = CLng(read("GlobalSynchro", qint32(srdNotSynchro))); },
        // Partners may not be loaded yet: the names are checked when they are next read.
        [&] { m_topControl = CStr(read("TopControl", QString())); },
        [&] { m_bootControl = CStr(read("BootControl", QString())); },
        [&] {
            m_customFormat = CStr(read("CustomFormat", QString()));
            m_dateView->setCustomFormat(m_customFormat);
        },
        [&] { m_synchValue = CBool(read("SynchValue", false)); },
        [&] {
            m_menuStateVisible = CBool(read("MenuStateVisible", false));
            m_mnuRel->setVisible(m_menuStateVisible);
        },
        [&] { showMode(); },
        [&] { m_dateView->setMaxDate(CDate(read("MaxDate", defaultMaxDate))); },
        [&] { m_dateView->setMinDate(CDate(read("MinDate", defaultMinDate))); },
        [&] { m_dateView->setUpDown(CBool(read("UpDown", false))); },
        [&] { readExtent(*this, bag); },
    });

    if (isAll(m_date)) {
        ignoreErrors({
            [&] { m_dateView->setValue(now); },
            [&] { m_dateLongUD->setValue(0); },
            [&] { m_dateView->setCustomFormat(allText); },
            [&] { setDateLongText(allText); },
        });
    } else if (m_relative) {
        ignoreErrors({
            [&] { m_dateLongUD->setValue(m_dayCount); },
            [&] { m_date = DateAdd(QStringLiteral("y"), m_dayCount, now); },
            [&] { m_dateView->setValue(CDate(m_date)); },
            [&] { setDateLongText(QString::number(m_dayCount)); },
        });
    } else {
        ignoreErrors({
            [&] { m_dateView->setValue(CDate(m_date)); },
            [&] {
                const qint32 days = CLng(DateDiff(QStringLiteral("y"), now, CDate(m_date)));
                m_dateLongUD->setValue(days);
                m_dayCount = days;
            },
            [&] { setDateLongText(QString::number(m_dayCount)); },
        });
    }
    const Qt::CheckState state = m_relative ? Qt::Checked : Qt::Unchecked;
    if (m_chRel->checkState() != state)
        m_chRel->setCheckState(state);
    m_mnuRel->setText(loadString(m_relative ? 206 : 205));
    layoutWidgets();
}

// ---- the view -------------------------------------------------------------------------------

void RelDate::showMode()
{
    m_dateLong->setVisible(m_relative);
    m_dateLongUD->setVisible(m_relative);
    m_dateView->setVisible(!m_relative);
    setFocusProxy(m_relative ? static_cast<QWidget *>(m_dateLong) : m_dateView);
}

void RelDate::setDateLongText(const QString &text)
{
    // The control's own writes are no typing.
    const QScopedValueRollback<bool> guard(m_dateLongGuard, true);
    m_dateLong->setText(text);
}

void RelDate::refreshView()
{
    if (isAll(m_date)) {
        setDateLongText(allText);
        attempt([&] { m_dateView->setCustomFormat(allText); });
        return;
    }
    attempt([&] {
        const QDateTime shown
            = m_relative ? DateAdd(QStringLiteral("d"), m_dayCount, today()) : CDate(m_date);
        const qint64 days = m_relative ? m_dayCount : DateDiff(QStringLiteral("d"), today(), shown);
        setDateLongText(QString::number(days));
        if (m_dateView->showsAll())
            m_dateView->setCustomFormat(m_customFormat);
        // Only what the picker shows: the model already holds this value.
        if (m_dateView->Value().date() != shown.date()) {
            const QSignalBlocker blocker(m_dateView);
            m_dateView->setValue(shown);
        }
    });
    update();
}

int RelDate::frameWidth() const
{
    if (m_border == 0)
        return 0;
    return m_appearance == 0 ? 1 : 2;
}

void RelDate::layoutWidgets()
{
    const int frame = frameWidth();
    setContentsMargins(frame, frame, frame, frame);
    m_surface->setGeometry(contentsRect());
    const QRect client = m_surface->rect();
    // The box takes the style's indicator size, centred in a slot with half the style's label
    // spacing on either side, so that it scales with the style and the screen.
    const QStyle *boxStyle = m_chRel->style();
    const int indicatorWidth = boxStyle->pixelMetric(QStyle::PM_IndicatorWidth, nullptr, m_chRel);
    const int indicatorHeight = boxStyle->pixelMetric(QStyle::PM_IndicatorHeight, nullptr, m_chRel);
    const int gap
        = qMax(0, boxStyle->pixelMetric(QStyle::PM_CheckBoxLabelSpacing, nullptr, m_chRel)) / 2;
    const int slotWidth = qMin(indicatorWidth + 2 * gap, client.width() / 2);
    const QSize boxSize(qMin(indicatorWidth, slotWidth), qMin(indicatorHeight, client.height()));
    const auto placeBox = [&](int slotLeft) {
        m_chRel->setGeometry(QRect(QPoint(slotLeft + (slotWidth - boxSize.width()) / 2,
                                          client.top() + (client.height() - boxSize.height()) / 2),
                                   boxSize));
        m_chRel->show();
    };
    QRect area = client;
    int overLeft = 2;
    int overRight = 2;
    switch (m_checkBoxState) {
    case rbsRight:
        placeBox(client.right() - slotWidth + 1);
        area.setRight(client.right() - slotWidth);
        overRight = 0;
        break;
    case rbsLeft:
        placeBox(client.left());
        area.setLeft(client.left() + slotWidth);
        overLeft = 0;
        break;
    default:
        m_chRel->hide();
        break;
    }
    // The date widgets reach under the control's edge, so that their own borders do not double
    // the control's.
    const QRect over = area.adjusted(-overLeft, -2, overRight, 2);
    m_dateView->setGeometry(over);
    // The spinner's own size hint follows the style's scroll bar width.
    const int spinWidth = qMin(m_dateLongUD->sizeHint().width(), area.width() / 2);
    const int spinLeft = area.right() - spinWidth + 1;
    m_dateLongUD->setGeometry(spinLeft, area.top(), spinWidth, area.height());
    m_dateLong->setGeometry(over.left(), over.top(), spinLeft - over.left(), over.height());
    update();
}

void RelDate::resizeEvent(QResizeEvent *)
{
    layoutWidgets();
}

void RelDate::showEvent(QShowEvent *event)
{
    updateAccessibleNames();
    Control::showEvent(event);
}

void RelDate::updateAccessibleNames()
{
    // The host's name for the control names the date itself and leads the names of the other
    // parts, so that a screen reader tells apart the "from" and "to" fields of one form.
    const QString host = accessibleName();
    const auto named = [&host](const QString &part) {
        return host.isEmpty() ? part : tr("%1: %2").arg(host, part);
    };
    m_dateView->setAccessibleName(host.isEmpty() ? tr("Date") : host);
    m_dateView->setAccessibleDescription(loadString(201));
    m_dateView->updateAccessibleNames();
    m_dateLong->setAccessibleName(named(tr("Days from today")));
    m_dateLong->setAccessibleDescription(loadString(202));
    m_dateLongUD->setAccessibleName(named(tr("Step days from today")));
    m_dateLongUD->setAccessibleDescription(loadString(202));
    m_chRel->setAccessibleName(named(loadString(207)));
}

void RelDate::paintEvent(QPaintEvent *)
{
    const int frame = frameWidth();
    if (frame == 0)
        return;
    QPainter painter(this);
    if (frame == 1) {
        painter.setPen(palette().color(QPalette::WindowText));
        painter.drawRect(rect().adjusted(0, 0, -1, -1));
        return;
    }
    QStyleOptionFrame option;
    option.initFrom(this);
    option.lineWidth = frame;
    option.midLineWidth = 0;
    option.state |= QStyle::State_Sunken;
    style()->drawPrimitive(QStyle::PE_Frame, &option, &painter, this);
}

QWidget *RelDate::namedChildOf(QObject *watched) const
{
    for (auto *widget = qobject_cast<QWidget *>(watched); widget && widget != this;
         widget = widget->parentWidget()) {
        if (widget == m_dateView || widget == m_dateLong || widget == m_dateLongUD
            || widget == m_chRel)
            return widget;
        if (widget->isWindow())
            return nullptr;
    }
    return nullptr;
}

void RelDate::watchChild(QWidget *child)
{
    QList<QWidget *> widgets = child->findChildren<QWidget *>();
    widgets.prepend(child);
    for (QWidget *widget : widgets) {
        if (widget->window() != child->window())
            continue; // the picker's calendar is a window of its own
        widget->installEventFilter(this);
        widget->setMouseTracking(true);
    }
}

} // namespace zelkon
