#include <zelkon/common/conversions.h>
#include <zelkon/common/datepicker.h>
#include <zelkon/common/ignoreerrors_p.h>
#include <zelkon/common/platform.h>
#include <zelkon/common/registry.h>
#include <zelkon/common/strings_p.h>
#include <zelkon/common/updown.h>
#include <zelkon/common/variants.h>
#include <zelkon/reldate/reldate_p.h>

#include <QAction>
#include <QCheckBox>
#include <QLineEdit>
#include <QMenu>
#include <QScopedValueRollback>

#include <limits>

namespace zelkon {

ZELKON_REGISTER_CONTROL(RelDate);

RelDatePrivate::RelDatePrivate(RelDate *control)
    : q(control)
    , surface(new QWidget(control))
    , dateView(new DatePicker(surface))
    , dateLong(new QLineEdit(surface))
    , dateLongUD(new UpDown(surface))
    , chRel(new QCheckBox(surface))
    , popUpDate(new QMenu(control))
{ }

QDate RelDatePrivate::today() const
{
    return putDay.isValid() ? putDay : Platform::current().today();
}

RelDate::RelDate(QWidget *parent)
    : Control(parent)
    , d(std::make_unique<RelDatePrivate>(this))
{
    d->dateView->setObjectName(QStringLiteral("DateView"));
    d->dateLong->setObjectName(QStringLiteral("DateLong"));
    d->dateLongUD->setObjectName(QStringLiteral("DateLongUD"));
    d->chRel->setObjectName(QStringLiteral("ChRel"));
    d->popUpDate->setObjectName(QStringLiteral("PopUpDate"));

    // Any day count is taken by the spinner; the date range is checked by its change handler.
    d->dateLongUD->setMin(std::numeric_limits<qint32>::min());
    d->dateLongUD->setMax(std::numeric_limits<qint32>::max());
    d->chRel->setTristate(false);

    for (int i = 0; i < 2; ++i) {
        d->currentDate[i] = d->popUpDate->addAction(loadString(203));
        d->currentDate[i]->setObjectName(QStringLiteral("CurrentDate"));
        d->currentDate[i]->setProperty("Index", i);
        connect(d->currentDate[i], &QAction::triggered, this,
                [this] { d->menuCurrentDateChosen(); });
    }
    d->currentDate[0]->setVisible(false);
    d->dateAll = d->popUpDate->addAction(loadString(204));
    d->dateAll->setObjectName(QStringLiteral("DateAll"));
    d->mnuRel = d->popUpDate->addAction(QString());
    d->mnuRel->setObjectName(QStringLiteral("mnuRel"));
    d->mnuRel->setVisible(d->menuStateVisible);

    d->dateView->setToolTip(loadString(201));
    d->dateLong->setToolTip(loadString(202));
    d->dateLongUD->setToolTip(loadString(202));
    d->chRel->setToolTip(loadString(207));
    d->updateAccessibleNames();

    connect(d->dateAll, &QAction::triggered, this, [this] { d->menuDateAllChosen(); });
    connect(d->mnuRel, &QAction::triggered, this, [this] { d->menuRelChosen(); });
    connect(d->chRel, &QCheckBox::stateChanged, this, [this] { d->chRelClicked(); });
    connect(d->dateLong, &QLineEdit::textChanged, this, [this] { d->dateLongChanged(); });
    connect(d->dateLongUD, &UpDown::Change, this, [this] { d->dateLongUDChanged(); });
    connect(d->dateView, &DatePicker::Change, this, [this] { d->dateViewChanged(); });
    connect(d->dateView, &DatePicker::CloseUp, this, [this] { d->dateViewAdopted(); });
    connect(d->dateView, &DatePicker::DropDown, this, [this] { d->dateViewLeftAll(); });
    connect(d->dateView, &DatePicker::Click, this, [this] { d->dateViewLeftAll(); });
    // The menu's own action runs after the menu has hidden, so the closing Change waits for it.
    connect(d->popUpDate, &QMenu::aboutToHide, this, [this] {
        QMetaObject::invokeMethod(
            this,
            [this] {
                if (!d->changeAfterMenu)
                    return;
                d->changeAfterMenu = false;
                Q_EMIT Change();
            },
            Qt::QueuedConnection);
    });

    for (QWidget *child : {static_cast<QWidget *>(d->dateView), static_cast<QWidget *>(d->dateLong),
                           static_cast<QWidget *>(d->dateLongUD), static_cast<QWidget *>(d->chRel)})
        d->watchChild(child);

    // Sized as a line edit in a form layout: as wide as it is given, one line high.
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setFrameLook(1, 1);
    d->showCheckBox();
    d->showMode();
    d->layoutWidgets();
}

RelDate::~RelDate() = default;

// ---- the value ------------------------------------------------------------------------------

bool RelDate::Relative()
{
    d->showMode();
    return d->model.isRelative();
}

void RelDate::setRelative(bool relative)
{
    d->switchMode(relative);
}

QVariant RelDate::RetDate()
{
    return d->model.date(d->today());
}

void RelDate::setRetDate(const QVariant &value)
{
    d->putDate(value);
}

qint32 RelDate::RetNum()
{
    return d->model.dayCount(d->today());
}

void RelDate::setRetNum(qint32 days)
{
    d->putDayCount(days);
}

void RelDatePrivate::switchMode(bool relative)
{
    if (!model.setRelative(relative, today())) {
        q->notifyPut(QStringLiteral("Relative"));
        return;
    }
    showCheckBox();
    showMode();
    propagateMode();
    Q_EMIT q->Change();
    q->notifyPut(QStringLiteral("Relative"));
    q->notifyPut(QStringLiteral("RetDate"));
    refreshView(today());
}

void RelDatePrivate::putDate(const QVariant &value)
{
    const QScopedValueRollback<QDate> day(putDay, today());
    if (!RelativeDate::isAll(value)) {
        // The spinner and the picker report these writes as the user's, and their handlers
        // carry them on; the value is then read back, so a date outside the picker's range is
        // stored clamped.
        ignoreErrors({
            [&] { dateView->setCustomFormat(customFormat); },
            [&] {
                if (const auto days = RelativeDate::daysFromToday(value, today())) {
                    dateLongUD->setValue(*days);
                    setDateLongText(QString::number(*days));
                }
            },
            [&] { dateView->setValue(CDate(value)); },
            [&] { model.setStoredDate(dateView->Value()); },
            [&] { model.setDayCount(dateLongUD->Value()); },
        });
    } else {
        if (!model.setAll())
            return; // refused without a word
        ignoreErrors({
            [&] { dateView->setCustomFormat(allText()); },
            [&] { setDateLongText(allText()); },
        });
        synchronizeValue();
    }
    q->notifyPut(QStringLiteral("RetDate"));
    refreshView(today());
}

void RelDatePrivate::putDayCount(qint32 days)
{
    // The stored date is not written here: the spinner (relative) or the picker (absolute) carries
    // the new count into it through its own change handler.
    const QScopedValueRollback<QDate> day(putDay, today());
    const QDate now = putDay;
    model.setDayCount(days);
    attempt([&] { dateLongUD->setValue(days); });
    if (const auto date = RelativeDate::dateFromToday(days, now))
        attempt([&] { dateView->setValue(*date); });
    q->notifyPut(QStringLiteral("RetNum"));
    refreshView(now);
}

// ---- plain properties -----------------------------------------------------------------------

bool RelDate::AllowAll() const
{
    return d->model.allowAll();
}

void RelDate::setAllowAll(bool allow)
{
    d->model.setAllowAll(allow);
    notifyPut(QStringLiteral("AllowAll"));
}

qint32 RelDate::Appearance() const
{
    return frameAppearance();
}

void RelDate::setAppearance(qint32 appearance)
{
    setFrameLook(appearance, frameBorder());
    notifyPut(QStringLiteral("Appearance"));
    d->layoutWidgets();
}

qint32 RelDate::Border() const
{
    return frameBorder();
}

void RelDate::setBorder(qint32 border)
{
    setFrameLook(frameAppearance(), border);
    notifyPut(QStringLiteral("Border"));
    d->layoutWidgets();
}

bool RelDate::SynchValue() const
{
    return d->synchValue;
}

void RelDate::setSynchValue(bool synch)
{
    d->synchValue = synch;
    d->synchronizeValue();
    notifyPut(QStringLiteral("SynchValue"));
}

QString RelDate::TopControl()
{
    return d->livePartnerName(d->topControl, QStringLiteral("TopControl"));
}

void RelDate::setTopControl(const QString &name)
{
    d->putPartnerName(d->topControl, name, QStringLiteral("TopControl"));
}

QString RelDate::BootControl()
{
    return d->livePartnerName(d->bootControl, QStringLiteral("BootControl"));
}

void RelDate::setBootControl(const QString &name)
{
    d->putPartnerName(d->bootControl, name, QStringLiteral("BootControl"));
}

qint32 RelDate::GlobalSynchro() const
{
    return d->globalSynchro;
}

void RelDate::setGlobalSynchro(qint32 synchro)
{
    put(d->globalSynchro, synchro, QStringLiteral("GlobalSynchro"));
}

bool RelDate::MenuStateVisible() const
{
    return d->menuStateVisible;
}

void RelDate::setMenuStateVisible(bool visible)
{
    put(d->menuStateVisible, visible, QStringLiteral("MenuStateVisible"),
        [this] { d->mnuRel->setVisible(d->menuStateVisible); });
}

qint32 RelDate::CheckBoxState() const
{
    return d->checkBoxState;
}

void RelDate::setCheckBoxState(qint32 state)
{
    put(d->checkBoxState, state, QStringLiteral("CheckBoxState"), [this] {
        d->layoutWidgets();
        updateGeometry();
    });
}

QString RelDate::CustomFormat() const
{
    return d->customFormat;
}

// The format the host gave is kept apart from the picker's, which reads "All" while no date is
// set, so that saving a control that shows "All" does not turn "All" into its format.
void RelDate::setCustomFormat(const QString &format)
{
    d->customFormat = format;
    attempt([&] { d->dateView->setCustomFormat(format); });
    notifyPut(QStringLiteral("CustomFormat"));
}

void RelDate::applyEnabled(bool enabled)
{
    QWidget::setEnabled(enabled);
    for (QWidget *child : {static_cast<QWidget *>(d->dateView), static_cast<QWidget *>(d->dateLong),
                           static_cast<QWidget *>(d->dateLongUD), static_cast<QWidget *>(d->chRel)})
        child->setEnabled(enabled);
}

QDateTime RelDate::MaxDate() const
{
    return d->dateView->MaxDate();
}

void RelDate::setMaxDate(const QDateTime &date)
{
    attempt([&] { d->dateView->setMaxDate(date); });
    notifyPut(QStringLiteral("MaxDate"));
}

QDateTime RelDate::MinDate() const
{
    return d->dateView->MinDate();
}

void RelDate::setMinDate(const QDateTime &date)
{
    attempt([&] { d->dateView->setMinDate(date); });
    notifyPut(QStringLiteral("MinDate"));
}

bool RelDate::UpDown() const
{
    return d->dateView->UpDown();
}

void RelDate::setUpDown(bool upDown)
{
    d->dateView->setUpDown(upDown);
    notifyPut(QStringLiteral("UpDown"));
}

// The date parts describe what the picker shows, whatever the mode.
qint16 RelDate::YearDate() const
{
    return d->dateView->Year();
}

qint16 RelDate::MonthDate() const
{
    return d->dateView->Month();
}

qint16 RelDate::DayOfMonth() const
{
    return d->dateView->Day();
}

qint16 RelDate::DayOfWeek() const
{
    return d->dateView->DayOfWeek();
}

qint16 RelDate::HourDate() const
{
    return d->dateView->Hour();
}

qint16 RelDate::MinuteDate() const
{
    return d->dateView->Minute();
}

qint16 RelDate::SecondDate() const
{
    return d->dateView->Second();
}

void RelDate::ReadProperties(PropertyBag &bag)
{
    d->readProperties(bag);
}

void RelDate::WriteProperties(PropertyBag &bag)
{
    d->writeProperties(bag);
}

} // namespace zelkon
