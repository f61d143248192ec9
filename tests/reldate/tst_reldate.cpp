#include <zelkon/common/datepicker.h>
#include <zelkon/common/memorypropertybag.h>
#include <zelkon/common/registry.h>
#include <zelkon/common/strings_p.h>
#include <zelkon/test/testplatform.h>
#include <zelkon/common/updown.h>
#include <zelkon/reldate/reldate.h>

#include <QAction>
#include <QCheckBox>
#include <QDateTimeEdit>
#include <QLineEdit>
#include <QMenu>
#include <QSignalSpy>
#include <QStyle>
#include <QTest>

using namespace zelkon;

namespace {

const QVariant All = QStringLiteral("All");

QDateTime day(int y, int m, int d, int h = 0, int min = 0)
{
    return QDateTime(QDate(y, m, d), QTime(h, min));
}

template<typename T = QWidget>
T *child(QObject *parent, const char *name)
{
    return parent->findChild<T *>(QString::fromLatin1(name));
}

// A host form of RelDate controls created by class name, restored from an empty bag as a saved
// form without properties would be, with a plain field after them in the focus chain.
struct Form
{
    QWidget widget;
    QLineEdit *next = new QLineEdit(&widget);

    Form()
    {
        widget.resize(420, 240);
        next->move(10, 205);
    }
    RelDate *add(const char *name, int index = -1, bool restore = true)
    {
        auto *r = qobject_cast<RelDate *>(createControl(QStringLiteral("RelDate"), &widget));
        r->setObjectName(QString::fromLatin1(name));
        r->setIndex(index);
        r->setGeometry(10, 10, 200, 28);
        if (restore) {
            MemoryPropertyBag empty;
            r->ReadProperties(empty);
        }
        return r;
    }
    bool show()
    {
        widget.show();
        widget.activateWindow();
        return QTest::qWaitForWindowActive(&widget);
    }
};

} // namespace

class tst_RelDate : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void newControl();
    void model_data();
    void model();
    void clampingAndAll();
    void gestures_data();
    void gestures();
    void mouseEvents();
    void persistence();
    void partnerNames_data();
    void partnerNames();
    void danglingPartnerCleared();
    void bounds_data();
    void bounds();
    void modePropagation();
    void layout_data();
    void layout();
    void accessibleNames_data();
    void accessibleNames();

private:
    TestPlatform m_platform{QDate(2024, 5, 10)};
};

void tst_RelDate::init()
{
    m_platform.setToday(QDate(2024, 5, 10));
    m_platform.clearRecords();
}

void tst_RelDate::newControl()
{
    Form form;
    RelDate *r = form.add("D", -1, false);
    r->InitProperties();
    QVERIFY(!r->Relative() && !r->AllowAll() && !r->SynchValue() && !r->MenuStateVisible());
    QVERIFY(!r->RetDate().isValid());
    QCOMPARE(r->GlobalSynchro(), 0);
    QCOMPARE(r->CustomFormat(), QString());
    QVERIFY(child(r, "DateView")->isVisibleTo(r) && !child(r, "DateLong")->isVisibleTo(r));
    QVERIFY(!child<QAction>(r, "mnuRel")->isVisible());
    QSignalSpy change(r, &RelDate::Change);
    QSignalSpy changed(r, &Control::PropertyChanged);
    r->setProperty("RetDate", All); // refused without a word
    QVERIFY(!r->RetDate().isValid());
    QCOMPARE(change.size() + changed.size(), 0);

    // Enabled by name reaches the children and leaves QWidget::setEnabled alone.
    QVERIFY(r->setProperty("Enabled", false));
    QVERIFY(!r->isEnabled() && !child(r, "DateLong")->isEnabled());
    QCOMPARE(r->property("Enabled").toBool(), false);
    r->setProperty("Enabled", true);
    QVERIFY(child(r, "DateView")->isEnabled());
}

void tst_RelDate::model_data()
{
    QTest::addColumn<bool>("relative");
    QTest::addColumn<QVariant>("assigned"); // a day count (RetNum) or a date (RetDate)
    QTest::addColumn<QVariant>("date");
    QTest::addColumn<int>("days");
    QTest::addColumn<QVariant>("dateNextDay"); // after today moved on by a day
    QTest::addColumn<int>("daysNextDay");
    auto row = [](const char *tag, bool relative, const QVariant &assigned, const QVariant &date,
                  int days, const QVariant &next, int daysNext) {
        QTest::newRow(tag) << relative << assigned << date << days << next << daysNext;
    };
    const QVariant late = day(2024, 5, 10, 23, 59), yesterday = day(2024, 5, 9, 23, 59);
    row("relative, fresh", true, {}, day(2024, 5, 10), 0, day(2024, 5, 11), 0);
    row("relative, a week back", true, -7, day(2024, 5, 3), -7, day(2024, 5, 4), -7);
    row("relative, All", true, All, All, 0, All, 0);
    row("today, late", false, late, late, 0, late, -1);
    row("tomorrow, midnight", false, day(2024, 5, 11), day(2024, 5, 11), 1, day(2024, 5, 11), 0);
    row("yesterday, late", false, yesterday, yesterday, -1, yesterday, -2);
    row("across a year", false, day(2025, 5, 10), day(2025, 5, 10), 365, day(2025, 5, 10), 364);
    row("absolute, All", false, All, All, 0, All, 0);
}

void tst_RelDate::model()
{
    QFETCH(bool, relative);
    QFETCH(QVariant, assigned);
    QFETCH(QVariant, date);
    QFETCH(QVariant, dateNextDay);
    Form form;
    RelDate *r = form.add("D");
    r->setRelative(relative);
    if (assigned.isValid())
        QVERIFY(
            r->setProperty(assigned.typeId() == QMetaType::Int ? "RetNum" : "RetDate", assigned));
    QCOMPARE(r->property("RetDate"), date);
    QTEST(r->RetNum(), "days");
    if (date != All)
        QVERIFY(r->DayOfMonth() == date.toDateTime().date().day()
                && r->HourDate() == date.toDateTime().time().hour());
    m_platform.setToday(QDate(2024, 5, 11));
    QCOMPARE(r->RetDate(), dateNextDay);
    QTEST(r->RetNum(), "daysNextDay");

    // Switching the mode keeps the calendar day, or All; a switch to the same mode does nothing.
    QSignalSpy change(r, &RelDate::Change);
    QSignalSpy changed(r, &Control::PropertyChanged);
    r->setProperty("Relative", !relative);
    r->setRelative(!relative);
    QCOMPARE(change.size(), 1);
    QCOMPARE(changed.value(0).value(0).toString(), QStringLiteral("Relative"));
    QCOMPARE(changed.value(1).value(0).toString(), QStringLiteral("RetDate"));
    QCOMPARE(child<QCheckBox>(r, "ChRel")->isChecked(), !relative);
    if (date == All)
        QCOMPARE(r->RetDate(), All);
    else
        QCOMPARE(r->RetDate().toDateTime().date(), dateNextDay.toDateTime().date());
    QTEST(r->RetNum(), date == All ? "days" : "daysNextDay");
}

void tst_RelDate::clampingAndAll()
{
    Form form;
    RelDate *r = form.add("D");
    r->setRelative(false);
    r->setMinDate(day(2024, 1, 1));
    r->setRetDate(day(2023, 6, 1, 15, 0));
    QCOMPARE(r->RetDate(), QVariant(day(2024, 1, 1))); // the picker's time, not the one given
    r->setRetDate(QStringLiteral("not a date"));
    QCOMPARE(r->RetDate(), QVariant(day(2024, 1, 1)));
    QSignalSpy changed(r, &Control::PropertyChanged);
    r->setRetDate(All);
    QCOMPARE(r->RetNum(), -130);
    QCOMPARE(changed.last().value(0).toString(), QStringLiteral("RetDate"));
    r->setRetDate(day(2024, 5, 20));
    QVERIFY(!child<DatePicker>(r, "DateView")->showsAll());
    QCOMPARE(child<QLineEdit>(r, "DateLong")->text(), QStringLiteral("10"));
}

void tst_RelDate::gestures_data()
{
    QTest::addColumn<bool>("startRelative");
    QTest::addColumn<QString>("gesture"); // steps separated by "; "
    QTest::addColumn<bool>("allowAll");
    QTest::addColumn<bool>("relative");
    QTest::addColumn<QVariant>("days"); // from today, or All
    QTest::addColumn<QString>("shown"); // in the day-count field
    QTest::addColumn<int>("changes");
    auto row = [](bool startRelative, const char *gesture, bool allowAll, bool relative,
                  const QVariant &days, const char *shown, int changes) {
        QTest::addRow("%s: %s%s", startRelative ? "relative" : "absolute", gesture,
                      allowAll ? "" : ", All not allowed")
            << startRelative << QString::fromLatin1(gesture) << allowAll << relative << days
            << QString::fromLatin1(shown) << changes;
    };
    // From 9 days back, on MinDate's day; MaxDate is 22 days ahead. Both bounds carry a time of
    // day, which does not count. An accepted typed count reports twice: once from the spinner it
    // moves, once from the field.
    row(true, "type +5", true, true, 5, "5", 2);
    row(true, "type  7", true, true, 7, "7", 2);
    row(true, "type -2", true, true, -2, "-2", 2);
    row(true, "type abc", true, true, -9, "-9", 0);
    row(true, "type All", true, true, -9, "All", 0);
    row(true, "type 30", true, true, -9, "-9", 0);
    row(true, "type -10", true, true, -9, "-9", 0);
    row(true, "type 1000000000", true, true, -9, "-9", 0);
    row(true, "type 3; type -9", true, true, -9, "-9", 4);
    row(true, "type 22", true, true, 22, "22", 2);
    row(true, "click up", true, true, -8, "-8", 1);
    row(true, "click down", true, true, -9, "-9", 0);
    row(true, "click ChRel", true, false, -9, "-9", 1);
    row(true, "click ChRel ChRel", true, true, -9, "-9", 2);
    // The mode toggle reports Change twice; going to today both through the spinner and itself.
    row(true, "key Ctrl+R", true, false, -9, "-9", 2);
    row(false, "key Ctrl+R", true, true, -9, "-9", 2);
    row(true, "key Ctrl+Shift+R", true, true, -9, "-9", 0);
    row(true, "key Alt+R", true, true, -9, "-9", 0);
    row(true, "key Ctrl+A", true, true, All, "All", 1);
    row(true, "key Ctrl+A", false, true, -9, "-9", 0);
    row(true, "key Ctrl+0", true, true, 0, "0", 2);
    row(true, "key Return", true, true, -9, "-9", 0);
    row(false, "key End, Up", true, false, -8, "-8", 1);
    // A click on the word All takes the picker's date again; the hidden field keeps its text.
    row(false, "key Ctrl+A; click all", true, false, -9, "All", 2);
    // The day-count field opens the menu on the press and adds nothing; the picker opens it on
    // the release and reports once more when the menu closes, whatever was chosen.
    row(true, "menu mnuRel", true, false, -9, "-9", 2);
    row(false, "menu DateAll", true, false, All, "All", 2);
    row(false, "menu Esc", false, false, -9, "-9", 1);
}

void tst_RelDate::gestures()
{
    QFETCH(bool, startRelative);
    QFETCH(QString, gesture);
    QFETCH(bool, allowAll);
    QFETCH(QVariant, days);
    Form form;
    RelDate *r = form.add("D");
    r->setAllowAll(allowAll);
    r->setCheckBoxState(rbsLeft);
    r->setMenuStateVisible(true);
    r->setCustomFormat(QStringLiteral("yyyy-MM-dd"));
    r->setMinDate(day(2024, 5, 1, 12));
    r->setMaxDate(day(2024, 6, 1, 9));
    r->setRetNum(-9);
    r->setRelative(startRelative);
    QVERIFY(form.show());
    auto *edit = child<QLineEdit>(r, "DateLong");
    auto *picker = child<DatePicker>(r, "DateView");
    QWidget *dateWidget = startRelative ? static_cast<QWidget *>(edit) : picker->dateEdit();
    dateWidget->setFocus();
    QTRY_VERIFY(dateWidget->hasFocus());
    auto *menu = child<QMenu>(r, "PopUpDate");
    QSignalSpy change(r, &RelDate::Change);

    for (const QString &step : gesture.split(QStringLiteral("; "))) {
        const QString verb = step.section(QLatin1Char(' '), 0, 0);
        const QString rest = step.section(QLatin1Char(' '), 1);
        if (verb == QLatin1String("type")) {
            QTest::keyClick(edit, Qt::Key_Home);
            QTest::keyClick(edit, Qt::Key_End, Qt::ShiftModifier);
            // One key event that types the whole text, as an input method commits it.
            QTest::sendKeyEvent(QTest::Click, edit, Qt::Key_unknown, rest, Qt::NoModifier);
        } else if (verb == QLatin1String("key")) {
            QTest::keySequence(QApplication::focusWidget(), QKeySequence::fromString(rest));
        } else if (verb == QLatin1String("click")) {
            for (const QString &name : rest.split(QLatin1Char(' '))) {
                auto *target = r->findChild<QWidget *>(name);
                QTest::mouseClick(target, Qt::LeftButton, {}, target->rect().center());
            }
        } else {
            QTest::mousePress(dateWidget, Qt::RightButton, {}, QPoint(5, 5));
            QCOMPARE(menu->isVisible(), startRelative);
            if (!startRelative)
                QTest::mouseRelease(dateWidget, Qt::RightButton, {}, QPoint(5, 5));
            QTRY_VERIFY(menu->isVisible());
            QCOMPARE(child<QAction>(r, "DateAll")->isVisible(), allowAll);
            for (QAction *action : r->findChildren<QAction *>(QStringLiteral("CurrentDate")))
                QCOMPARE(action->isVisible(), action->property("Index").toInt() == 1);
            if (rest == QLatin1String("Esc"))
                QTest::keyClick(menu, Qt::Key_Escape);
            else
                QTest::mouseClick(menu, Qt::LeftButton, {},
                                  menu->actionGeometry(r->findChild<QAction *>(rest)).center());
            QTRY_VERIFY(!menu->isVisible());
            if (startRelative)
                QTest::mouseRelease(dateWidget, Qt::RightButton, {}, QPoint(5, 5));
            QCoreApplication::processEvents();
        }
    }
    QTEST(int(change.size()), "changes");
    QTEST(r->Relative(), "relative");
    QTEST(edit->text(), "shown");
    QCOMPARE(child<QAction>(r, "mnuRel")->text(), loadString(r->Relative() ? 206 : 205));
    QCOMPARE(picker->showsAll(), days == All);
    if (days == All) {
        QCOMPARE(r->RetDate(), All);
        QCOMPARE(r->RetNum(), -9);
    } else {
        const QDateTime date = day(2024, 5, 10).addDays(days.toInt());
        QCOMPARE(r->RetDate(), QVariant(date));
        QCOMPARE(r->RetNum(), days.toInt());
        QCOMPARE(child<UpDown>(r, "DateLongUD")->Value(), days.toInt());
        QCOMPARE(picker->dateEdit()->text(), date.toString(QStringLiteral("yyyy-MM-dd")));
    }
    const bool enter = gesture == QLatin1String("key Return");
    QCOMPARE(m_platform.sentKeys(), enter ? QStringList{QStringLiteral("{TAB}")} : QStringList());
    QVERIFY(!enter || !edit->hasFocus());
}

void tst_RelDate::mouseEvents()
{
    Form form;
    RelDate *r = form.add("D");
    QVERIFY(form.show());
    // Of the moving pointer's arguments only Button is the host's to change.
    QList<bool> byReference;
    for (const QByteArray &type : QMetaMethod::fromSignal(&RelDate::MouseMoveXY).parameterTypes())
        byReference << type.endsWith('&');
    QCOMPARE(byReference, (QList<bool>{true, false, false, false}));
    QStringList seen;
    QPointF at;
    connect(r, &RelDate::MouseMove, this, [&] { seen << QStringLiteral("Move"); });
    connect(r, &RelDate::MouseMoveXY, this, [&](qint16 &, qint16, float x, float y) {
        seen << QStringLiteral("XY");
        at = QPointF(x, y);
    });
    connect(r, &RelDate::MouseDown, this, [&](qint16 &button, qint16 &shift, float &, float &) {
        seen << QStringLiteral("Down %1 %2").arg(button).arg(shift);
        button = 0; // the host takes the right button: no menu
    });
    connect(r, &RelDate::MouseUp, this, [&](qint16 &button, qint16 &, float &, float &) {
        seen << QStringLiteral("Up %1").arg(button);
    });

    auto *edit = child(r, "DateLong");
    QTest::mouseMove(edit, QPoint(12, 7));
    QTRY_COMPARE(seen, (QStringList{QStringLiteral("Move"), QStringLiteral("XY")}));
    QCOMPARE(at, QPointF(12, 7));
    seen.clear();
    QTest::mouseClick(edit, Qt::RightButton, Qt::ShiftModifier, QPoint(5, 5));
    QCOMPARE(seen, (QStringList{QStringLiteral("Down 2 1"), QStringLiteral("Up 2")}));
    QVERIFY(!child(r, "PopUpDate")->isVisible());
    seen.clear();
    r->setRelative(false);
    QTest::mouseMove(child<DatePicker>(r, "DateView")->dateEdit(), QPoint(20, 9));
    QTRY_COMPARE(seen, (QStringList{QStringLiteral("XY"), QStringLiteral("Move")}));
    QCOMPARE(at, QPointF(20, 9));
}

void tst_RelDate::persistence()
{
    Form form;
    form.add("DateTo");
    RelDate *r = form.add("DateFrom");
    MemoryPropertyBag untouched;
    r->WriteProperties(untouched);
    QCOMPARE(untouched.keys(), QStringList());

    const std::pair<const char *, QVariant> values[]
        = {{"AllowAll", false},
           {"Relative", false},
           {"RetDate", day(2024, 5, 1, 9, 30)},
           {"CheckBoxState", int(rbsLeft)},
           {"Enabled", false},
           {"GlobalSynchro", int(srdSynchro)},
           {"TopControl", QStringLiteral("dateto")},
           {"CustomFormat", QStringLiteral("dd.MM.yyyy")},
           {"MenuStateVisible", true},
           {"MaxDate", day(2030, 1, 1)},
           {"MinDate", day(2000, 1, 1)},
           {"UpDown", true},
           {"Border", 0},
           {"Appearance", 0}};
    for (const auto &[name, value] : values)
        QVERIFY2(r->setProperty(name, value), name);
    MemoryPropertyBag bag;
    r->WriteProperties(bag);
    QCOMPARE(bag.keys(),
             QStringLiteral("AllowAll Relative RetNum RetDate CheckBoxState Enabled GlobalSynchro "
                            "TopControl CustomFormat MenuStateVisible MaxDate MinDate UpDown "
                            "Border Appearance")
                 .split(QLatin1Char(' ')));
    QCOMPARE(bag.ReadProperty(QStringLiteral("RetNum")), QVariant(qint32(-9)));
    RelDate *copy = form.add("Copy", -1, false);
    copy->ReadProperties(bag);
    for (const QString &name : bag.keys())
        QVERIFY2(copy->property(qPrintable(name)) == r->property(qPrintable(name)),
                 qPrintable(name));
    QCOMPARE(child<DatePicker>(copy, "DateView")->dateEdit()->text(), QStringLiteral("01.05.2024"));
    QCOMPARE(child<QLineEdit>(copy, "DateLong")->text(), QStringLiteral("-9"));
    QVERIFY(child<QAction>(copy, "mnuRel")->isVisible());

    // Saved as All, as an absolute date of today (not written: it loads as the day of loading)
    // and as a day count, loaded on a later day.
    RelDate *saved[] = {form.add("S0"), form.add("S1"), form.add("S2")};
    saved[0]->setRetDate(All);
    saved[1]->setRelative(false);
    saved[2]->setRetNum(3);
    MemoryPropertyBag bags[3];
    for (int i = 0; i < 3; ++i)
        saved[i]->WriteProperties(bags[i]);
    QVERIFY(!bags[1].contains(QStringLiteral("RetDate")));
    m_platform.setToday(QDate(2024, 6, 1));
    RelDate *loaded[]
        = {form.add("L0", -1, false), form.add("L1", -1, false), form.add("L2", -1, false)};
    QSignalSpy change(loaded[1], &RelDate::Change);
    for (int i = 0; i < 3; ++i)
        loaded[i]->ReadProperties(bags[i]);
    QCOMPARE(change.size(), 0); // restoring is no user change
    QCOMPARE(child<QLineEdit>(loaded[0], "DateLong")->text(), All.toString());
    QVERIFY(child<DatePicker>(loaded[0], "DateView")->showsAll() && !loaded[1]->Relative());
    m_platform.setToday(QDate(2024, 6, 2));
    const QVariantList dates{All, day(2024, 6, 1), day(2024, 6, 5)};
    for (int i = 0; i < 3; ++i)
        QCOMPARE(loaded[i]->RetDate(), dates[i]);
}

void tst_RelDate::partnerNames_data()
{
    QTest::addColumn<bool>("kept");
    for (const char *name : {"DateTo", "DATETO", "Arr(2)"})
        QTest::newRow(name) << true;
    // "Arr": the first same-named control is an array member, the walk ends there unresolved.
    // "Other" is no RelDate.
    for (const char *name : {"Arr(5)", "Arr(x)", "Arr(2", "NoSuchControl", "Arr", "Other"})
        QTest::newRow(name) << false;
}

void tst_RelDate::partnerNames()
{
    QFETCH(bool, kept);
    const QString name = QString::fromLatin1(QTest::currentDataTag());
    Form form;
    RelDate *self = form.add("DateFrom");
    form.add("DateTo");
    form.add("Arr", 1);
    form.add("Arr", 2);
    form.add("Arr"); // a later non-member of the same name
    (new Control(&form.widget))->setObjectName(QStringLiteral("Other"));
    QSignalSpy changed(self, &Control::PropertyChanged);
    QVERIFY(self->setProperty("TopControl", name));
    self->setBootControl(name);
    QCOMPARE(self->property("TopControl").toString(), kept ? name : QString());
    QCOMPARE(self->BootControl(), kept ? name : QString());
    QCOMPARE(changed.count(), 2);
}

void tst_RelDate::danglingPartnerCleared()
{
    Form form;
    RelDate *self = form.add("DateFrom");
    RelDate *to = form.add("DateTo");
    self->setTopControl(QStringLiteral("DateTo"));
    QCOMPARE(self->TopControl(), QStringLiteral("DateTo"));
    delete to;
    QSignalSpy changed(self, &Control::PropertyChanged);
    QCOMPARE(self->TopControl(), QString());
    QCOMPARE(self->TopControl(), QString());
    QCOMPARE(changed, (QList<QVariantList>{{QStringLiteral("TopControl")}}));
}

void tst_RelDate::bounds_data()
{
    QTest::addColumn<QVariant>("self");
    QTest::addColumn<QVariant>("top");
    QTest::addColumn<QVariant>("bottom");
    QTest::addColumn<bool>("synch");
    QTest::addColumn<QVariant>("expected");
    auto row = [](const char *tag, const QVariant &self, const QVariant &top,
                  const QVariant &bottom, bool synch, const QVariant &expected) {
        QTest::newRow(tag) << self << top << bottom << synch << expected;
    };
    const QVariant d1 = day(2024, 5, 1), d5 = day(2024, 5, 5), d10 = day(2024, 5, 10),
                   d20 = day(2024, 5, 20), none;
    row("above the top", d10, d1, none, true, d1);
    row("synchronisation off", d10, d1, none, false, d10);
    row("below the bottom", d10, none, d20, true, d20);
    row("within", d10, d20, d1, true, d10);
    row("crossed: the bottom wins", d10, d1, d5, true, d5);
    row("top is All", d10, All, none, true, d10);
    row("self is All", All, d1, none, true, All);
}

void tst_RelDate::bounds()
{
    QFETCH(QVariant, self);
    QFETCH(QVariant, top);
    QFETCH(QVariant, bottom);
    QFETCH(bool, synch);
    QFETCH(QVariant, expected);
    Form form;
    RelDate *r = form.add("Self");
    r->setRelative(false);
    RelDate *upper = form.add("Upper");
    RelDate *lower = form.add("Lower");
    if (top.isValid()) {
        upper->setRetDate(top);
        r->setTopControl(QStringLiteral("Upper"));
    }
    if (bottom.isValid()) {
        lower->setRetDate(bottom);
        r->setBootControl(QStringLiteral("lower"));
    }
    r->setRetDate(self);
    r->setSynchValue(synch);
    QCOMPARE(r->RetDate(), expected);
    if (top.isValid())
        QCOMPARE(upper->RetDate(), top); // the partner is never moved

    // A user gesture applies the bounds again: Ctrl+0 goes to today, then the bounds act.
    if (self != All) {
        QVERIFY(form.show());
        QWidget *edit = child<DatePicker>(r, "DateView")->dateEdit();
        edit->setFocus();
        QTRY_VERIFY(edit->hasFocus());
        QTest::keyClick(edit, Qt::Key_0, Qt::ControlModifier);
        QCOMPARE(r->RetDate(), expected);
    }
}

void tst_RelDate::modePropagation()
{
    Form form;
    RelDate *leader = form.add("Leader");
    RelDate *first = form.add("First");
    RelDate *loner = form.add("Loner");
    RelDate *second = form.add("Second");
    first->setGlobalSynchro(srdSynchro);
    second->setProperty("GlobalSynchro", srdSynchro);
    first->setRetNum(2);
    QSignalSpy firstChange(first, &RelDate::Change);
    QSignalSpy lonerChange(loner, &RelDate::Change);
    leader->setRelative(false);
    QVERIFY(!first->Relative() && !second->Relative() && loner->Relative());
    QCOMPARE(firstChange.size(), 1);
    QCOMPARE(lonerChange.size(), 0);
    QCOMPARE(first->RetDate(), QVariant(day(2024, 5, 12))); // converted, same calendar day

    // A follower's own switch reaches the other follower, not the leader.
    second->setRelative(true);
    QVERIFY(first->Relative() && !leader->Relative());
    QCOMPARE(first->RetNum(), 2);
}

void tst_RelDate::layout_data()
{
    QTest::addColumn<int>("boxState");
    QTest::addColumn<bool>("relative");
    for (int box : {rbsNotVisible, rbsRight, rbsLeft})
        for (bool relative : {true, false})
            QTest::addRow("box %d, %s", box, relative ? "relative" : "absolute") << box << relative;
}

void tst_RelDate::layout()
{
    QFETCH(int, boxState);
    QFETCH(bool, relative);
    Form form;
    RelDate *r = form.add("D");
    r->setRelative(relative);
    r->setProperty("CheckBoxState", boxState);
    r->resize(180, 26);
    QVERIFY(form.show());
    QWidget *box = child(r, "ChRel"), *view = child(r, "DateView"), *edit = child(r, "DateLong"),
            *spin = child(r, "DateLongUD");
    const QRect client = view->parentWidget()->rect();
    QCOMPARE(box->isVisible(), boxState != rbsNotVisible);
    QVERIFY(view->isVisible() != relative && edit->isVisible() == relative
            && spin->isVisible() == relative);

    // The date widgets share the width left by the box and reach under the other edges; the box
    // has the style's indicator size, centred in the slot left to it.
    const QRect date = relative ? edit->geometry().united(spin->geometry()) : view->geometry();
    const QRect b = box->geometry();
    if (boxState != rbsNotVisible)
        QCOMPARE(b.size(),
                 QSize(box->style()->pixelMetric(QStyle::PM_IndicatorWidth),
                       box->style()->pixelMetric(QStyle::PM_IndicatorHeight)));
    if (boxState == rbsRight) {
        QVERIFY(qAbs((b.left() - date.right()) - (client.right() + 1 - b.right())) <= 1);
        QCOMPARE(date.left(), client.left() - 2);
    } else if (boxState == rbsLeft) {
        QVERIFY(qAbs((b.left() - client.left()) - (date.left() - b.right())) <= 1);
    } else if (!relative) {
        QCOMPARE(view->geometry(), client.adjusted(-2, -2, 2, 2));
    }
    if (relative) {
        QCOMPARE(edit->geometry().right() + 1, spin->geometry().left());
        QVERIFY(spin->width() > 0 && edit->width() > spin->width());
    }
    QCOMPARE(date.top(), client.top() - 2);
}

void tst_RelDate::accessibleNames_data()
{
    QTest::addColumn<QString>("host"); // the control's own name, given once the form is shown
    QTest::addColumn<QStringList>("names"); // DateView, its edit, All, DateLong, DateLongUD, ChRel
    QTest::newRow("unnamed") << QString()
                             << QStringList{QStringLiteral("Date"),
                                            QStringLiteral("Date"),
                                            QStringLiteral("Date: any date"),
                                            QStringLiteral("Days from today"),
                                            QStringLiteral("Step days from today"),
                                            loadString(207)};
    QTest::newRow("named by the host") << QStringLiteral("From")
                                       << QStringList{QStringLiteral("From"),
                                                      QStringLiteral("From"),
                                                      QStringLiteral("From: any date"),
                                                      QStringLiteral("From: Days from today"),
                                                      QStringLiteral("From: Step days from today"),
                                                      QStringLiteral("From: ") + loadString(207)};
}

void tst_RelDate::accessibleNames()
{
    QFETCH(QString, host);
    QFETCH(QStringList, names);
    Form form;
    RelDate *r = form.add("D");
    r->setRetDate(All);
    QVERIFY(form.show());
    r->setAccessibleName(host);
    auto *edit = child<QLineEdit>(r, "DateLong");
    edit->setFocus();
    QTRY_VERIFY(edit->hasFocus());
    auto *picker = child<DatePicker>(r, "DateView");
    const QStringList seen{picker->accessibleName(),
                           picker->dateEdit()->accessibleName(),
                           child(picker, "all")->accessibleName(),
                           edit->accessibleName(),
                           child(r, "DateLongUD")->accessibleName(),
                           child(r, "ChRel")->accessibleName()};
    QCOMPARE(seen, names);
    QCOMPARE(picker->dateEdit()->accessibleDescription(), loadString(201));
    QCOMPARE(edit->accessibleDescription(), loadString(202));
}

QTEST_MAIN(tst_RelDate)
#include "tst_reldate.moc"
