#include <zelkon/common/datepicker.h>
#include <zelkon/common/memorypropertybag.h>
#include <zelkon/common/registry.h>
#include <zelkon/common/strings.h>
#include <zelkon/common/testplatform.h>
#include <zelkon/common/updown.h>
#include <zelkon/reldate/reldate.h>

#include <QAction>
#include <QCheckBox>
#include <QDateTimeEdit>
#include <QLineEdit>
#include <QMenu>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>

using namespace zelkon;

namespace {

QDateTime day(int y, int m, int d, int h = 0, int min = 0)
{
    return QDateTime(QDate(y, m, d), QTime(h, min));
}

template<typename T>
T *child(RelDate *r, const char *name)
{
    return r->findChild<T *>(QString::fromLatin1(name));
}

// A host form: RelDate controls created by class name, restored from an empty bag as a saved
// form without properties would be.
struct Form
{
    QWidget widget;

    Form() { widget.resize(420, 240); }
    RelDate *add(const QString &name, int index = -1, bool restore = true)
    {
        auto *r = qobject_cast<RelDate *>(createControl(QStringLiteral("RelDate"), &widget));
        r->setObjectName(name);
        r->setIndex(index);
        r->setGeometry(10, 10 + 36 * (widget.children().size() - 1) % 200, 200, 28);
        if (restore) {
            MemoryPropertyBag empty;
            r->ReadProperties(empty);
        }
        return r;
    }
    bool showActive()
    {
        widget.show();
        widget.activateWindow();
        return QTest::qWaitForWindowActive(&widget);
    }
};

void typeReplacing(QLineEdit *edit, const QString &text)
{
    edit->setFocus();
    QTest::keyClick(edit, Qt::Key_Home);
    QTest::keyClick(edit, Qt::Key_End, Qt::ShiftModifier);
    // One key event that types the whole text, as an input method commits it.
    QTest::sendKeyEvent(QTest::Click, edit, Qt::Key_unknown, text, Qt::NoModifier);
}

} // namespace

class tst_RelDate : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void createdByNameWithItsMembers();
    void texts_data();
    void texts();
    void newlyPlacedControlIsZeroed();
    void relativeDateFollowsToday();
    void absoluteDayCount_data();
    void absoluteDayCount();
    void modeSwitchKeepsTheCalendarDay();
    void retDateClampsAndAll();
    void typingDayCount_data();
    void typingDayCount();
    void spinner();
    void pickerEditAndLeavingAll();
    void checkBoxClick();
    void keyboard_data();
    void keyboard();
    void enterMovesFocus();
    void popupMenuFromPicker();
    void popupMenuFromDayCount();
    void mouseEvents();
    void saveAndRestore();
    void defaultTodayRule();
    void partnerNames_data();
    void partnerNames();
    void danglingPartnerClearedOnRead();
    void bounds_data();
    void bounds();
    void modePropagation();
    void layout_data();
    void layout();

private:
    TestPlatform m_platform{QDate(2024, 5, 10)};
};

void tst_RelDate::createdByNameWithItsMembers()
{
    Form form;
    RelDate *r = form.add(QStringLiteral("DateFrom"));
    QCOMPARE(QString::fromLatin1(r->metaObject()->className()), QStringLiteral("zelkon::RelDate"));
    QVERIFY(child<DatePicker>(r, "DateView"));
    QVERIFY(child<QLineEdit>(r, "DateLong"));
    QVERIFY(child<UpDown>(r, "DateLongUD"));
    QVERIFY(child<QCheckBox>(r, "ChRel"));
    QVERIFY(child<QMenu>(r, "PopUpDate"));
    QVERIFY(child<QAction>(r, "DateAll"));
    QVERIFY(child<QAction>(r, "mnuRel"));
    const QList<QAction *> current = r->findChildren<QAction *>(QStringLiteral("CurrentDate"));
    QCOMPARE(current.size(), 2);
    QCOMPARE(current[0]->property("Index").toInt() + current[1]->property("Index").toInt(), 1);

    for (const char *name :
         {"AllowAll",    "Appearance",    "Border",           "SynchValue",    "TopControl",
          "BootControl", "GlobalSynchro", "MenuStateVisible", "CheckBoxState", "Relative",
          "RetDate",     "RetNum",        "CustomFormat",     "Enabled",       "MaxDate",
          "MinDate",     "UpDown",        "YearDate",         "MonthDate",     "DayOfMonth",
          "DayOfWeek",   "HourDate",      "MinuteDate",       "SecondDate",    "hWnd",
          "Version"})
        QVERIFY2(r->metaObject()->indexOfProperty(name) >= 0, name);
    for (const char *signal :
         {"Change()", "MouseMove()", "MouseMoveXY(qint16&,qint16&,float&,float&)",
          "MouseUp(qint16&,qint16&,float&,float&)", "MouseDown(qint16&,qint16&,float&,float&)"})
        QVERIFY2(r->metaObject()->indexOfSignal(signal) >= 0, signal);

    // Enabled by name reaches the children and leaves QWidget::setEnabled alone.
    QVERIFY(r->setProperty("Enabled", false));
    QVERIFY(!r->isEnabled());
    QVERIFY(!child<QLineEdit>(r, "DateLong")->isEnabled());
    QCOMPARE(r->property("Enabled").toBool(), false);
    r->setProperty("Enabled", true);
    QVERIFY(child<DatePicker>(r, "DateView")->isEnabled());
}

void tst_RelDate::texts_data()
{
    QTest::addColumn<QLocale::Language>("language");
    QTest::newRow("English") << QLocale::English;
    QTest::newRow("Russian") << QLocale::Russian;
    QTest::newRow("German") << QLocale::German;
}

void tst_RelDate::texts()
{
    QFETCH(QLocale::Language, language);
    m_platform.setUiLanguage(language);
    Form form;
    RelDate *r = form.add(QStringLiteral("D"));
    m_platform.setUiLanguage(QLocale::English);

    for (int id = 201; id <= 207; ++id)
        QVERIFY(hasString(id, language));
    QCOMPARE(child<DatePicker>(r, "DateView")->toolTip(), loadString(201, language));
    QCOMPARE(child<QLineEdit>(r, "DateLong")->toolTip(), loadString(202, language));
    QCOMPARE(child<UpDown>(r, "DateLongUD")->toolTip(), loadString(202, language));
    QCOMPARE(child<QAction>(r, "DateAll")->text(), loadString(204, language));
    QCOMPARE(child<QCheckBox>(r, "ChRel")->toolTip(), loadString(207, language));
    // The mode item names the mode it switches to.
    QCOMPARE(child<QAction>(r, "mnuRel")->text(), loadString(206, language));
    if (language == QLocale::English) {
        QCOMPARE(loadString(206, language), QStringLiteral("Absolute Date"));
        QCOMPARE(child<DatePicker>(r, "DateView")->toolTip(),
                 QStringLiteral("Input absolute date"));
    } else {
        QVERIFY(loadString(204, language) != loadString(204, QLocale::English));
    }
    r->setRelative(false);
    QCOMPARE(child<QAction>(r, "mnuRel")->text(), loadString(205));
}

void tst_RelDate::newlyPlacedControlIsZeroed()
{
    Form form;
    RelDate *r = form.add(QStringLiteral("D"), -1, false);
    r->InitProperties();
    QCOMPARE(r->Relative(), false);
    QCOMPARE(r->AllowAll(), false);
    QVERIFY(!r->RetDate().isValid()); // Empty
    QCOMPARE(r->GlobalSynchro(), 0);
    QCOMPARE(r->SynchValue(), false);
    QCOMPARE(r->MenuStateVisible(), false);
    QCOMPARE(r->CustomFormat(), QString());
    QVERIFY(child<DatePicker>(r, "DateView")->isVisibleTo(r));
    QVERIFY(!child<QLineEdit>(r, "DateLong")->isVisibleTo(r));

    QSignalSpy change(r, &RelDate::Change);
    QSignalSpy changed(r, &Control::PropertyChanged);
    r->setProperty("RetDate", QStringLiteral("All"));
    QVERIFY(!r->RetDate().isValid());
    QCOMPARE(change.size(), 0);
    QCOMPARE(changed.size(), 0);
}

void tst_RelDate::relativeDateFollowsToday()
{
    Form form;
    RelDate *r = form.add(QStringLiteral("D"));
    QCOMPARE(r->RetDate(), QVariant(day(2024, 5, 10)));
    r->setProperty("RetNum", -7);
    QCOMPARE(r->property("RetDate"), QVariant(day(2024, 5, 3)));
    m_platform.setToday(QDate(2024, 5, 11));
    QCOMPARE(r->property("RetDate"), QVariant(day(2024, 5, 4)));
    QCOMPARE(r->RetNum(), -7);
    m_platform.setToday(QDate(2024, 5, 10));
}

void tst_RelDate::absoluteDayCount_data()
{
    QTest::addColumn<QDateTime>("stored");
    QTest::addColumn<int>("days");
    QTest::newRow("today, late") << day(2024, 5, 10, 23, 59) << 0;
    QTest::newRow("tomorrow, midnight") << day(2024, 5, 11) << 1;
    QTest::newRow("yesterday, late") << day(2024, 5, 9, 23, 59) << -1;
    QTest::newRow("across a year") << day(2025, 5, 10) << 365;
}

void tst_RelDate::absoluteDayCount()
{
    QFETCH(QDateTime, stored);
    QFETCH(int, days);
    Form form;
    RelDate *r = form.add(QStringLiteral("D"));
    r->setRelative(false);
    r->setRetDate(stored);
    QCOMPARE(r->RetDate(), QVariant(stored));
    QCOMPARE(r->RetNum(), days);
    QCOMPARE(r->DayOfMonth(), stored.date().day());
    QCOMPARE(r->HourDate(), stored.time().hour());
}

void tst_RelDate::modeSwitchKeepsTheCalendarDay()
{
    Form form;
    RelDate *r = form.add(QStringLiteral("D"));
    r->setRetNum(3);
    QSignalSpy change(r, &RelDate::Change);
    QSignalSpy changed(r, &Control::PropertyChanged);
    r->setProperty("Relative", false);
    QCOMPARE(change.size(), 1);
    QCOMPARE(changed.value(0).value(0).toString(), QStringLiteral("Relative"));
    QCOMPARE(changed.value(1).value(0).toString(), QStringLiteral("RetDate"));
    QCOMPARE(r->RetDate(), QVariant(day(2024, 5, 13)));
    QVERIFY(child<DatePicker>(r, "DateView")->isVisibleTo(r));
    QVERIFY(!child<UpDown>(r, "DateLongUD")->isVisibleTo(r));
    QCOMPARE(child<QCheckBox>(r, "ChRel")->checkState(), Qt::Unchecked);

    m_platform.setToday(QDate(2024, 5, 11));
    r->setRelative(true);
    QCOMPARE(r->RetNum(), 2);
    QCOMPARE(r->RetDate(), QVariant(day(2024, 5, 13)));
    QCOMPARE(child<QLineEdit>(r, "DateLong")->text(), QStringLiteral("2"));
    r->setRelative(true); // unchanged: nothing at all
    QCOMPARE(change.size(), 2);
    m_platform.setToday(QDate(2024, 5, 10));

    r->setRetDate(QStringLiteral("All"));
    r->setRelative(false);
    QCOMPARE(r->RetDate(), QVariant(QStringLiteral("All")));
    r->setRelative(true);
    QCOMPARE(r->RetDate(), QVariant(QStringLiteral("All")));
    QCOMPARE(r->RetNum(), 2);
}

void tst_RelDate::retDateClampsAndAll()
{
    Form form;
    RelDate *r = form.add(QStringLiteral("D"));
    r->setRelative(false);
    r->setMinDate(day(2024, 1, 1));
    r->setRetDate(day(2023, 6, 1, 15, 0));
    QCOMPARE(r->RetDate(), QVariant(day(2024, 1, 1))); // the picker's time, not the one given
    r->setRetDate(QStringLiteral("not a date"));
    QCOMPARE(r->RetDate(), QVariant(day(2024, 1, 1)));

    r->setAllowAll(false);
    QSignalSpy change(r, &RelDate::Change);
    QSignalSpy changed(r, &Control::PropertyChanged);
    r->setRetDate(QStringLiteral("All"));
    QCOMPARE(r->RetDate(), QVariant(day(2024, 1, 1)));
    QCOMPARE(change.size() + changed.size(), 0);

    r->setAllowAll(true);
    const int days = r->RetNum();
    r->setRetDate(QStringLiteral("All"));
    QCOMPARE(r->RetDate(), QVariant(QStringLiteral("All")));
    QCOMPARE(r->RetNum(), days);
    QVERIFY(child<DatePicker>(r, "DateView")->showsAll());
    QCOMPARE(child<QLineEdit>(r, "DateLong")->text(), QStringLiteral("All"));
    QCOMPARE(changed.last().value(0).toString(), QStringLiteral("RetDate"));
    r->setRetDate(day(2024, 5, 20));
    QVERIFY(!child<DatePicker>(r, "DateView")->showsAll());
    QCOMPARE(r->RetNum(), 10);
}

void tst_RelDate::typingDayCount_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QDateTime>("maxDate");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<int>("days");
    QTest::addColumn<int>("changes");
    const QDateTime farMax = day(9999, 12, 31);
    // An accepted count reports twice: once from the spinner it moves, once from the field.
    QTest::newRow("plus sign normalised")
        << QStringLiteral("+5") << farMax << QStringLiteral("5") << 5 << 2;
    QTest::newRow("blank normalised")
        << QStringLiteral(" 7") << farMax << QStringLiteral("7") << 7 << 2;
    QTest::newRow("negative") << QStringLiteral("-2") << farMax << QStringLiteral("-2") << -2 << 2;
    QTest::newRow("not a number") << QStringLiteral("abc") << farMax << QStringLiteral("3") << 3
                                  << 0;
    QTest::newRow("All is left alone")
        << QStringLiteral("All") << farMax << QStringLiteral("All") << 3 << 0;
    QTest::newRow("after MaxDate")
        << QStringLiteral("30") << day(2024, 6, 1) << QStringLiteral("3") << 3 << 0;
    QTest::newRow("no date at all")
        << QStringLiteral("1000000000") << farMax << QStringLiteral("3") << 3 << 0;
}

void tst_RelDate::typingDayCount()
{
    QFETCH(QString, typed);
    QFETCH(QDateTime, maxDate);
    QFETCH(QString, shown);
    QFETCH(int, days);
    QFETCH(int, changes);
    Form form;
    RelDate *r = form.add(QStringLiteral("D"));
    r->setMaxDate(maxDate);
    r->setRetNum(3);
    QVERIFY(form.showActive());
    auto *edit = child<QLineEdit>(r, "DateLong");
    QCOMPARE(edit->text(), QStringLiteral("3"));

    QSignalSpy change(r, &RelDate::Change);
    typeReplacing(edit, typed);
    QCOMPARE(edit->text(), shown);
    QCOMPARE(r->RetNum(), days);
    QCOMPARE(change.size(), changes);
    QCOMPARE(r->RetDate(), QVariant(day(2024, 5, 10).addDays(days)));
}

void tst_RelDate::spinner()
{
    Form form;
    RelDate *r = form.add(QStringLiteral("D"));
    QVERIFY(form.showActive());
    auto *spin = child<UpDown>(r, "DateLongUD");
    auto *up = spin->findChild<QToolButton *>(QStringLiteral("up"));
    auto *down = spin->findChild<QToolButton *>(QStringLiteral("down"));
    QSignalSpy change(r, &RelDate::Change);

    QTest::mouseClick(up, Qt::LeftButton);
    QCOMPARE(r->RetNum(), 1);
    QCOMPARE(child<QLineEdit>(r, "DateLong")->text(), QStringLiteral("1"));
    QCOMPARE(r->DayOfMonth(), 11); // the picker follows in relative mode
    QCOMPARE(change.size(), 1);

    r->setMinDate(day(2024, 5, 10));
    change.clear();
    QTest::mouseClick(down, Qt::LeftButton);
    QTest::mouseClick(down, Qt::LeftButton); // one day before MinDate: refused
    QCOMPARE(r->RetNum(), 0);
    QCOMPARE(spin->Value(), 0);
    QCOMPARE(change.size(), 1);
}

void tst_RelDate::pickerEditAndLeavingAll()
{
    Form form;
    RelDate *r = form.add(QStringLiteral("D"));
    r->setRelative(false);
    r->setCustomFormat(QStringLiteral("yyyy-MM-dd"));
    QVERIFY(form.showActive());
    auto *picker = child<DatePicker>(r, "DateView");
    picker->setFocus();
    QTRY_VERIFY(picker->dateEdit()->hasFocus());

    QSignalSpy change(r, &RelDate::Change);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_End);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Up);
    QCOMPARE(r->RetDate(), QVariant(day(2024, 5, 11)));
    QCOMPARE(r->RetNum(), 1);
    QCOMPARE(change.size(), 1);

    QTest::keyClick(QApplication::focusWidget(), Qt::Key_A, Qt::ControlModifier);
    QCOMPARE(r->RetDate(), QVariant(QStringLiteral("All")));
    QVERIFY(picker->showsAll());
    change.clear();
    // A click on the word All takes the picker's date again.
    QTest::mouseClick(picker->findChild<QLineEdit *>(QStringLiteral("all")), Qt::LeftButton);
    QCOMPARE(r->RetDate(), QVariant(day(2024, 5, 11)));
    QVERIFY(!picker->showsAll());
    QCOMPARE(picker->dateEdit()->text(), QStringLiteral("2024-05-11"));
    QCOMPARE(change.size(), 1);
}

void tst_RelDate::checkBoxClick()
{
    Form form;
    RelDate *r = form.add(QStringLiteral("D"));
    r->setCheckBoxState(rbsLeft);
    QVERIFY(form.showActive());
    auto *box = child<QCheckBox>(r, "ChRel");
    QCOMPARE(box->checkState(), Qt::Checked);
    QSignalSpy change(r, &RelDate::Change);

    QTest::mouseClick(box, Qt::LeftButton, {}, box->rect().center());
    QCOMPARE(r->Relative(), false);
    QCOMPARE(change.size(), 1);
    QTest::mouseClick(box, Qt::LeftButton, {}, box->rect().center());
    QCOMPARE(r->Relative(), true);
    QCOMPARE(change.size(), 2);
}

void tst_RelDate::keyboard_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::addColumn<bool>("allowAll");
    QTest::addColumn<bool>("relative");
    QTest::addColumn<QVariant>("retDate");
    QTest::addColumn<int>("changes");
    const QVariant fiveDays = day(2024, 5, 15);
    const QVariant all = QStringLiteral("All");
    // The mode toggle reports Change twice; going to today both through the spinner and itself.
    QTest::newRow("Ctrl+R") << int(Qt::Key_R) << Qt::KeyboardModifiers(Qt::ControlModifier) << true
                            << false << fiveDays << 2;
    QTest::newRow("Ctrl+Shift+R") << int(Qt::Key_R) << (Qt::ControlModifier | Qt::ShiftModifier)
                                  << true << true << fiveDays << 0;
    QTest::newRow("Alt+R") << int(Qt::Key_R) << Qt::KeyboardModifiers(Qt::AltModifier) << true
                           << true << fiveDays << 0;
    QTest::newRow("Ctrl+A") << int(Qt::Key_A) << Qt::KeyboardModifiers(Qt::ControlModifier) << true
                            << true << all << 1;
    QTest::newRow("Ctrl+A not allowed")
        << int(Qt::Key_A) << Qt::KeyboardModifiers(Qt::ControlModifier) << false << true << fiveDays
        << 0;
    QTest::newRow("Ctrl+0") << int(Qt::Key_0) << Qt::KeyboardModifiers(Qt::ControlModifier) << true
                            << true << QVariant(day(2024, 5, 10)) << 2;
}

void tst_RelDate::keyboard()
{
    QFETCH(int, key);
    QFETCH(Qt::KeyboardModifiers, modifiers);
    QFETCH(bool, allowAll);
    QFETCH(bool, relative);
    QFETCH(QVariant, retDate);
    QFETCH(int, changes);
    Form form;
    RelDate *r = form.add(QStringLiteral("D"));
    r->setAllowAll(allowAll);
    r->setRetNum(5);
    QVERIFY(form.showActive());
    auto *edit = child<QLineEdit>(r, "DateLong");
    edit->setFocus();
    QTRY_VERIFY(edit->hasFocus());

    QSignalSpy change(r, &RelDate::Change);
    QTest::keyClick(edit, Qt::Key(key), modifiers);
    QCOMPARE(r->Relative(), relative);
    QCOMPARE(r->RetDate(), retDate);
    QCOMPARE(change.size(), changes);
    if (retDate == QVariant(QStringLiteral("All")))
        QCOMPARE(edit->text(), QStringLiteral("All"));
}

void tst_RelDate::enterMovesFocus()
{
    Form form;
    RelDate *r = form.add(QStringLiteral("D"));
    auto *next = new QLineEdit(&form.widget);
    next->move(10, 200);
    QVERIFY(form.showActive());
    auto *edit = child<QLineEdit>(r, "DateLong");
    edit->setFocus();
    QTRY_VERIFY(edit->hasFocus());
    m_platform.clearRecords();

    QTest::keyClick(edit, Qt::Key_Return);
    QCOMPARE(m_platform.sentKeys(), QStringList{QStringLiteral("{TAB}")});
    QVERIFY(!edit->hasFocus());
    QCOMPARE(r->RetNum(), 0);
}

void tst_RelDate::popupMenuFromPicker()
{
    Form form;
    RelDate *r = form.add(QStringLiteral("D"));
    r->setRelative(false);
    QVERIFY(form.showActive());
    auto *picker = child<DatePicker>(r, "DateView");
    auto *menu = child<QMenu>(r, "PopUpDate");
    auto *all = child<QAction>(r, "DateAll");
    const QList<QAction *> current = r->findChildren<QAction *>(QStringLiteral("CurrentDate"));
    QSignalSpy change(r, &RelDate::Change);

    QTest::mouseClick(picker->dateEdit(), Qt::RightButton, {}, QPoint(10, 10));
    QTRY_VERIFY(menu->isVisible());
    QVERIFY(all->isVisible());
    QVERIFY(!child<QAction>(r, "mnuRel")->isVisible());
    for (QAction *action : current)
        QCOMPARE(action->isVisible(), action->property("Index").toInt() == 1);
    QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(all).center());
    QTRY_VERIFY(!menu->isVisible());
    QTRY_COMPARE(change.size(), 2); // the item, then the closing menu
    QCOMPARE(r->RetDate(), QVariant(QStringLiteral("All")));

    // Without "All" allowed the item is not offered; a menu closed by Esc still reports.
    r->setAllowAll(false);
    change.clear();
    QTest::mouseClick(picker, Qt::RightButton, {}, QPoint(10, 10));
    QTRY_VERIFY(menu->isVisible());
    QVERIFY(!all->isVisible());
    QTest::keyClick(menu, Qt::Key_Escape);
    QTRY_COMPARE(change.size(), 1);
    QCOMPARE(r->RetDate(), QVariant(QStringLiteral("All")));
}

void tst_RelDate::popupMenuFromDayCount()
{
    Form form;
    RelDate *r = form.add(QStringLiteral("D"));
    r->setMenuStateVisible(true);
    r->setRetNum(4);
    QVERIFY(form.showActive());
    auto *edit = child<QLineEdit>(r, "DateLong");
    auto *menu = child<QMenu>(r, "PopUpDate");
    auto *toggle = child<QAction>(r, "mnuRel");
    QSignalSpy change(r, &RelDate::Change);

    QTest::mousePress(edit, Qt::RightButton, {}, QPoint(5, 5));
    QTRY_VERIFY(menu->isVisible());
    QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(toggle).center());
    QTRY_VERIFY(!menu->isVisible());
    QTest::mouseRelease(edit, Qt::RightButton, {}, QPoint(5, 5));
    QCoreApplication::processEvents();
    // The toggle reports twice; the day-count field adds no Change of its own for the menu.
    QCOMPARE(change.size(), 2);
    QCOMPARE(r->Relative(), false);
    QCOMPARE(r->RetDate(), QVariant(day(2024, 5, 14)));
    QCOMPARE(toggle->text(), loadString(205));
}

void tst_RelDate::mouseEvents()
{
    Form form;
    RelDate *r = form.add(QStringLiteral("D"));
    QVERIFY(form.showActive());
    QStringList seen;
    QPointF at;
    connect(r, &RelDate::MouseMove, this, [&] { seen << QStringLiteral("Move"); });
    connect(r, &RelDate::MouseMoveXY, this, [&](qint16 &, qint16 &, float &x, float &y) {
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

    auto *edit = child<QLineEdit>(r, "DateLong");
    QTest::mouseMove(edit, QPoint(12, 7));
    QTRY_COMPARE(seen, (QStringList{QStringLiteral("Move"), QStringLiteral("XY")}));
    QCOMPARE(at, QPointF(12, 7));

    seen.clear();
    QTest::mouseClick(edit, Qt::RightButton, Qt::ShiftModifier, QPoint(5, 5));
    QCOMPARE(seen, (QStringList{QStringLiteral("Down 2 1"), QStringLiteral("Up 2")}));
    QVERIFY(!child<QMenu>(r, "PopUpDate")->isVisible());

    seen.clear();
    r->setRelative(false);
    QTest::mouseMove(child<DatePicker>(r, "DateView")->dateEdit(), QPoint(20, 9));
    QTRY_COMPARE(seen, (QStringList{QStringLiteral("XY"), QStringLiteral("Move")}));
    QCOMPARE(at, QPointF(20, 9));
}

void tst_RelDate::saveAndRestore()
{
    Form form;
    RelDate *partner = form.add(QStringLiteral("DateTo"));
    RelDate *r = form.add(QStringLiteral("DateFrom"));
    MemoryPropertyBag untouched;
    r->WriteProperties(untouched);
    QCOMPARE(untouched.keys(), QStringList());

    r->setAllowAll(false);
    r->setRelative(false);
    r->setRetDate(day(2024, 5, 1, 9, 30));
    r->setCheckBoxState(rbsLeft);
    r->setControlEnabled(false);
    r->setGlobalSynchro(srdSynchro);
    r->setTopControl(QStringLiteral("dateto"));
    r->setCustomFormat(QStringLiteral("dd.MM.yyyy"));
    r->setMenuStateVisible(true);
    r->setMaxDate(day(2030, 1, 1));
    r->setMinDate(day(2000, 1, 1));
    r->setUpDown(true);
    r->setBorder(0);
    r->setAppearance(0);
    MemoryPropertyBag bag;
    r->WriteProperties(bag);
    QCOMPARE(bag.keys(),
             QStringLiteral("AllowAll Relative RetNum RetDate CheckBoxState Enabled GlobalSynchro "
                            "TopControl CustomFormat MenuStateVisible MaxDate MinDate UpDown "
                            "Border Appearance")
                 .split(QLatin1Char(' ')));
    QCOMPARE(bag.ReadProperty(QStringLiteral("RetNum")), QVariant(qint32(-9)));

    RelDate *copy = form.add(QStringLiteral("Copy"), -1, false);
    copy->ReadProperties(bag);
    for (const char *name :
         {"AllowAll", "Relative", "RetNum", "RetDate", "CheckBoxState", "Enabled", "GlobalSynchro",
          "TopControl", "CustomFormat", "MenuStateVisible", "MaxDate", "MinDate", "UpDown",
          "Border", "Appearance"})
        QVERIFY2(copy->property(name) == r->property(name), name);
    QCOMPARE(child<DatePicker>(copy, "DateView")->dateEdit()->text(), QStringLiteral("01.05.2024"));
    QCOMPARE(child<QLineEdit>(copy, "DateLong")->text(), QStringLiteral("-9"));
    QVERIFY(child<QAction>(copy, "mnuRel")->isVisible());

    // "All" survives, in the picker and in the day-count field alike.
    partner->setRetDate(QStringLiteral("All"));
    MemoryPropertyBag allBag;
    partner->WriteProperties(allBag);
    RelDate *allCopy = form.add(QStringLiteral("AllCopy"), -1, false);
    allCopy->ReadProperties(allBag);
    QCOMPARE(allCopy->RetDate(), QVariant(QStringLiteral("All")));
    QCOMPARE(child<QLineEdit>(allCopy, "DateLong")->text(), QStringLiteral("All"));
    QVERIFY(child<DatePicker>(allCopy, "DateView")->showsAll());
}

void tst_RelDate::defaultTodayRule()
{
    Form form;
    RelDate *absolute = form.add(QStringLiteral("A"));
    absolute->setRelative(false);
    absolute->setRetDate(day(2024, 5, 10));
    RelDate *relative = form.add(QStringLiteral("R"));
    relative->setRetNum(3);
    MemoryPropertyBag absoluteBag;
    MemoryPropertyBag relativeBag;
    absolute->WriteProperties(absoluteBag);
    relative->WriteProperties(relativeBag);
    QVERIFY(!absoluteBag.contains(QStringLiteral("RetDate")));

    m_platform.setToday(QDate(2024, 6, 1));
    RelDate *a = form.add(QStringLiteral("A2"), -1, false);
    RelDate *r = form.add(QStringLiteral("R2"), -1, false);
    QSignalSpy change(a, &RelDate::Change);
    a->ReadProperties(absoluteBag);
    r->ReadProperties(relativeBag);
    QCOMPARE(a->Relative(), false);
    QCOMPARE(a->RetDate(), QVariant(day(2024, 6, 1))); // the day of loading
    QCOMPARE(r->RetDate(), QVariant(day(2024, 6, 4)));
    QCOMPARE(change.size(), 0); // restoring is no user change
    m_platform.setToday(QDate(2024, 6, 2));
    QCOMPARE(a->RetDate(), QVariant(day(2024, 6, 1))); // an absolute date stays put
    QCOMPARE(r->RetDate(), QVariant(day(2024, 6, 5)));
    m_platform.setToday(QDate(2024, 5, 10));
}

void tst_RelDate::partnerNames_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("kept");
    QTest::newRow("exact") << QStringLiteral("DateTo") << QStringLiteral("DateTo");
    QTest::newRow("any case") << QStringLiteral("DATETO") << QStringLiteral("DATETO");
    QTest::newRow("array member") << QStringLiteral("Arr(2)") << QStringLiteral("Arr(2)");
    QTest::newRow("array index not there") << QStringLiteral("Arr(5)") << QString();
    QTest::newRow("index not numeric") << QStringLiteral("Arr(x)") << QString();
    QTest::newRow("no closing parenthesis") << QStringLiteral("Arr(2") << QString();
    QTest::newRow("unknown") << QStringLiteral("NoSuchControl") << QString();
    // The first same-named control is an array member: the walk ends there, unresolved.
    QTest::newRow("array name without index") << QStringLiteral("Arr") << QString();
    QTest::newRow("not a RelDate") << QStringLiteral("Other") << QString();
}

void tst_RelDate::partnerNames()
{
    QFETCH(QString, name);
    QFETCH(QString, kept);
    Form form;
    RelDate *self = form.add(QStringLiteral("DateFrom"));
    form.add(QStringLiteral("DateTo"));
    form.add(QStringLiteral("Arr"), 1);
    form.add(QStringLiteral("Arr"), 2);
    form.add(QStringLiteral("Arr")); // a later non-member of the same name
    auto *other = new Control(&form.widget);
    other->setObjectName(QStringLiteral("Other"));
    QSignalSpy changed(self, &Control::PropertyChanged);

    QVERIFY(self->setProperty("TopControl", name));
    QCOMPARE(self->property("TopControl").toString(), kept);
    self->setBootControl(name);
    QCOMPARE(self->BootControl(), kept);
    QCOMPARE(changed.count(), 2);
}

void tst_RelDate::danglingPartnerClearedOnRead()
{
    Form form;
    RelDate *self = form.add(QStringLiteral("DateFrom"));
    RelDate *to = form.add(QStringLiteral("DateTo"));
    self->setTopControl(QStringLiteral("DateTo"));
    QCOMPARE(self->TopControl(), QStringLiteral("DateTo"));
    delete to;
    QSignalSpy changed(self, &Control::PropertyChanged);
    QCOMPARE(self->TopControl(), QString());
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed.at(0).at(0).toString(), QStringLiteral("TopControl"));
    QCOMPARE(self->TopControl(), QString());
    QCOMPARE(changed.size(), 1);
}

void tst_RelDate::bounds_data()
{
    QTest::addColumn<QVariant>("self");
    QTest::addColumn<QVariant>("top");
    QTest::addColumn<QVariant>("bottom");
    QTest::addColumn<bool>("synch");
    QTest::addColumn<QVariant>("expected");
    const QVariant all = QStringLiteral("All");
    const QVariant none;
    QTest::newRow("above the top") << QVariant(day(2024, 5, 10)) << QVariant(day(2024, 5, 1))
                                   << none << true << QVariant(day(2024, 5, 1));
    QTest::newRow("synchronisation off") << QVariant(day(2024, 5, 10)) << QVariant(day(2024, 5, 1))
                                         << none << false << QVariant(day(2024, 5, 10));
    QTest::newRow("below the bottom")
        << QVariant(day(2024, 5, 10)) << none << QVariant(day(2024, 5, 20)) << true
        << QVariant(day(2024, 5, 20));
    QTest::newRow("within") << QVariant(day(2024, 5, 10)) << QVariant(day(2024, 5, 20))
                            << QVariant(day(2024, 5, 1)) << true << QVariant(day(2024, 5, 10));
    QTest::newRow("crossed: the bottom wins")
        << QVariant(day(2024, 5, 10)) << QVariant(day(2024, 5, 1)) << QVariant(day(2024, 5, 5))
        << true << QVariant(day(2024, 5, 5));
    QTest::newRow("top is All") << QVariant(day(2024, 5, 10)) << all << none << true
                                << QVariant(day(2024, 5, 10));
    QTest::newRow("self is All") << all << QVariant(day(2024, 5, 1)) << none << true << all;
}

void tst_RelDate::bounds()
{
    QFETCH(QVariant, self);
    QFETCH(QVariant, top);
    QFETCH(QVariant, bottom);
    QFETCH(bool, synch);
    QFETCH(QVariant, expected);
    Form form;
    RelDate *r = form.add(QStringLiteral("Self"));
    r->setRelative(false);
    RelDate *upper = form.add(QStringLiteral("Upper"));
    RelDate *lower = form.add(QStringLiteral("Lower"));
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
    if (self != QVariant(QStringLiteral("All"))) {
        QVERIFY(form.showActive());
        auto *edit = child<DatePicker>(r, "DateView")->dateEdit();
        edit->setFocus();
        QTRY_VERIFY(edit->hasFocus());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_0, Qt::ControlModifier);
        QCOMPARE(r->RetDate(), expected);
    }
}

void tst_RelDate::modePropagation()
{
    Form form;
    RelDate *leader = form.add(QStringLiteral("Leader"));
    RelDate *first = form.add(QStringLiteral("First"));
    RelDate *loner = form.add(QStringLiteral("Loner"));
    RelDate *second = form.add(QStringLiteral("Second"));
    first->setGlobalSynchro(srdSynchro);
    second->setProperty("GlobalSynchro", srdSynchro);
    first->setRetNum(2);
    QSignalSpy firstChange(first, &RelDate::Change);
    QSignalSpy lonerChange(loner, &RelDate::Change);

    leader->setRelative(false);
    QCOMPARE(first->Relative(), false);
    QCOMPARE(second->Relative(), false);
    QCOMPARE(loner->Relative(), true);
    QCOMPARE(firstChange.size(), 1);
    QCOMPARE(lonerChange.size(), 0);
    QCOMPARE(first->RetDate(), QVariant(day(2024, 5, 12))); // converted, same calendar day

    // A follower's own switch reaches the other follower, not the leader.
    second->setRelative(true);
    QCOMPARE(first->Relative(), true);
    QCOMPARE(leader->Relative(), false);
    QCOMPARE(first->RetNum(), 2);
}

void tst_RelDate::layout_data()
{
    QTest::addColumn<int>("boxState");
    QTest::addColumn<bool>("relative");
    QTest::newRow("no box, relative") << int(rbsNotVisible) << true;
    QTest::newRow("no box, absolute") << int(rbsNotVisible) << false;
    QTest::newRow("box right, relative") << int(rbsRight) << true;
    QTest::newRow("box right, absolute") << int(rbsRight) << false;
    QTest::newRow("box left, relative") << int(rbsLeft) << true;
    QTest::newRow("box left, absolute") << int(rbsLeft) << false;
}

void tst_RelDate::layout()
{
    QFETCH(int, boxState);
    QFETCH(bool, relative);
    Form form;
    RelDate *r = form.add(QStringLiteral("D"));
    r->setRelative(relative);
    r->setProperty("CheckBoxState", boxState);
    r->resize(180, 26);
    QVERIFY(form.showActive());

    auto *box = child<QCheckBox>(r, "ChRel");
    auto *view = child<DatePicker>(r, "DateView");
    auto *edit = child<QLineEdit>(r, "DateLong");
    auto *spin = child<UpDown>(r, "DateLongUD");
    const QRect client = view->parentWidget()->rect();
    QCOMPARE(box->isVisible(), boxState != rbsNotVisible);
    QCOMPARE(view->isVisible(), !relative);
    QCOMPARE(edit->isVisible(), relative);
    QCOMPARE(spin->isVisible(), relative);

    // The date widgets share the width left by the box and reach under the other edges.
    const QRect date = relative ? edit->geometry().united(spin->geometry()) : view->geometry();
    if (boxState == rbsRight) {
        QCOMPARE(box->geometry().right(), client.right());
        QCOMPARE(date.right() + 1, box->geometry().left());
        QCOMPARE(date.left(), client.left() - 2);
    } else if (boxState == rbsLeft) {
        QCOMPARE(box->geometry().left(), client.left());
        QCOMPARE(date.left(), box->geometry().right() + 1);
    } else if (!relative) {
        QCOMPARE(view->geometry(), client.adjusted(-2, -2, 2, 2));
    }
    if (relative) {
        QCOMPARE(edit->geometry().right() + 1, spin->geometry().left());
        QVERIFY(spin->width() > 0 && edit->width() > spin->width());
    }
    QCOMPARE(date.top(), client.top() - 2);
}

QTEST_MAIN(tst_RelDate)
#include "tst_reldate.moc"
