#include "support/part.h"

#include <zelkon/common/datepicker.h>
#include <zelkon/common/memorypropertybag.h>
#include <zelkon/common/registry.h>
#include <zelkon/common/updown.h>
#include <zelkon/reldate/reldate.h>
#include <zelkon/test/testplatform.h>

#include <QAction>
#include <QDateTimeEdit>
#include <QLineEdit>
#include <QMenu>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>
#include <QTestEventList>

using namespace zelkon;

namespace {

const QVariant All = QStringLiteral("All");

QDateTime day(int y, int m, int d, int h = 0, int min = 0)
{
    return QDateTime(QDate(y, m, d), QTime(h, min));
}

// A host form of RelDate controls created by class name, restored from an empty bag as a saved
// form without properties would be.
struct Form
{
    QWidget widget;

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
    void init()
    {
        m_platform.setToday(QDate(2024, 5, 10));
        m_platform.clearRecords();
    }
    void puts()
    {
        // A newly placed control starts zeroed (the defaults are those of saving): absolute, and
        // All is refused without a word.
        Form form;
        RelDate *r = form.add("D", -1, false);
        QSignalSpy changed(r, &Control::PropertyChanged);
        r->setRetDate(All);
        QVERIFY(!r->Relative() && !r->RetDate().isValid() && changed.isEmpty());
        QVERIFY(part(r, "DateView")->isVisibleTo(r) && !part(r, "DateLong")->isVisibleTo(r));
        r->setAllowAll(true);
        r->setMinDate(day(2024, 1, 1));
        auto *edit = part<QLineEdit>(r, "DateLong");
        auto *picker = part<DatePicker>(r, "DateView");
        // A date before MinDate is stored as the picker clamps it, with the picker's time; what is
        // no date changes nothing.
        r->setRetDate(day(2023, 6, 1, 15));
        r->setRetDate(QStringLiteral("not a date"));
        QCOMPARE(r->RetDate(), QVariant(day(2024, 1, 1)));
        QCOMPARE(edit->text(), QStringLiteral("-130"));
        QVERIFY(r->YearDate() == 2024 && r->DayOfMonth() == 1 && r->HourDate() == 0);
        // All shows in both parts; a day count leaves it through the picker.
        r->setRetDate(All);
        QVERIFY(edit->text() == All.toString() && picker->showsAll());
        changed.clear();
        r->setRetNum(3);
        QCOMPARE(r->RetDate(), QVariant(day(2024, 5, 13)));
        QVERIFY(edit->text() == QStringLiteral("3") && !picker->showsAll());
        QCOMPARE(changed.value(0).value(0).toString(), QStringLiteral("RetNum"));
    }
    void gestures_data()
    {
        QTest::addColumn<bool>("startRelative"); // at -9 days, or All on the word All
        QTest::addColumn<bool>("allowAll");
        QTest::addColumn<QString>("target"); // a part of the control, by name
        QTest::addColumn<QTestEventList>("events");
        QTest::addColumn<bool>("relative");
        QTest::addColumn<QVariant>("days"); // from today, or All
        QTest::addColumn<int>("changes");
        QTest::addColumn<QString>("menuItem"); // chosen from the menu that the events open
        // From 9 days back, on MinDate's day; MaxDate is 22 days ahead.
        auto row = [&](const char *tag, bool startRelative, const char *target,
                       const QTestEventList &events, bool relative, const QVariant &days,
                       int changes, bool allowAll = true, const char *menuItem = "") {
            QTest::newRow(tag) << startRelative << allowAll << QString::fromLatin1(target) << events
                               << relative << days << changes << QString::fromLatin1(menuItem);
        };
        const auto keys
            = [](std::initializer_list<std::pair<Qt::Key, Qt::KeyboardModifiers>> list) {
                  QTestEventList events;
                  for (const auto &[key, modifiers] : list)
                      events.addKeyClick(key, modifiers);
                  return events;
              };
        const auto click = [](Qt::MouseButton button = Qt::LeftButton) {
            QTestEventList events;
            events.addMouseClick(button, {}, QPoint(5, 5));
            return events;
        };
        // An accepted count reports twice: from the spinner it moves and from the field. A typed
        // "+" is taken and written back as the plain count.
        QTestEventList typed = keys({{Qt::Key_Home, {}}, {Qt::Key_End, Qt::ShiftModifier}});
        typed.addKeyClick('4');
        typed.addKeyClick(Qt::Key_Home);
        typed.addKeyClick('+');
        row("type 4, then +", true, "DateLong", typed, true, 4, 3);
        QTestEventList letter = keys({{Qt::Key_End, {}}});
        letter.addKeyClick('x');
        row("type a letter", true, "DateLong", letter, true, -9, 0);
        row("spin up", true, "up", click(), true, -8, 1);
        row("spin below MinDate", true, "down", click(), true, -9, 0);
        row("click ChRel", true, "ChRel", click(), false, -9, 1);
        // The mode toggle reports Change twice; going to today both through the spinner and itself.
        row("Ctrl+R", true, "DateLong", keys({{Qt::Key_R, Qt::ControlModifier}}), false, -9, 2);
        row("Ctrl+Shift+R", true, "DateLong",
            keys({{Qt::Key_R, Qt::ControlModifier | Qt::ShiftModifier}}), true, -9, 0);
        row("Ctrl+A", true, "DateLong", keys({{Qt::Key_A, Qt::ControlModifier}}), true, All, 1);
        row("Ctrl+A, not allowed", true, "DateLong", keys({{Qt::Key_A, Qt::ControlModifier}}), true,
            -9, 0, false);
        row("Ctrl+0", true, "DateLong", keys({{Qt::Key_0, Qt::ControlModifier}}), true, 0, 2);
        row("Return", true, "DateLong", keys({{Qt::Key_Return, {}}}), true, -9, 0);
        row("picker End, Up", false, "edit", keys({{Qt::Key_End, {}}, {Qt::Key_Up, {}}}), false, -8,
            1);
        // A click on the word All takes the picker's date again; the hidden field keeps its text.
        row("click on All", false, "all", click(), false, -9, 1);
        // The day-count field opens the menu on the press and adds nothing; the picker opens it on
        // the release and reports once more when the menu closes, whatever was chosen.
        row("menu mnuRel", true, "DateLong", click(Qt::RightButton), false, -9, 2, true, "mnuRel");
        row("menu DateAll", false, "edit", click(Qt::RightButton), false, All, 2, true, "DateAll");
        row("menu Esc", false, "edit", click(Qt::RightButton), false, -9, 1, false, "Esc");
    }
    void gestures()
    {
        QFETCH(bool, startRelative);
        QFETCH(bool, allowAll);
        QFETCH(QString, target);
        QFETCH(QTestEventList, events);
        QFETCH(QVariant, days);
        // Given a control with the box and the menu item, bounded by MinDate and MaxDate (both with
        // a time of day, which does not count)
        Form form;
        RelDate *r = form.add("D");
        r->setAllowAll(true);
        r->setCheckBoxState(rbsLeft);
        r->setMenuStateVisible(true);
        r->setCustomFormat(QStringLiteral("yyyy-MM-dd"));
        r->setMinDate(day(2024, 5, 1, 12));
        r->setMaxDate(day(2024, 6, 1, 9));
        r->setRetNum(-9);
        r->setRelative(startRelative);
        if (target == QLatin1String("all"))
            r->setRetDate(All);
        r->setAllowAll(allowAll);
        QVERIFY(form.show());
        auto *acted = r->findChild<QWidget *>(target);
        acted->setFocus();
        QSignalSpy change(r, &RelDate::Change);

        // When the user acts on the part
        events.simulate(acted);
        QFETCH(QString, menuItem);
        if (!menuItem.isEmpty()) {
            auto *menu = part<QMenu>(r, "PopUpDate");
            QTRY_VERIFY(menu->isVisible());
            QCOMPARE(part<QAction>(r, "DateAll")->isVisible(), allowAll);
            for (QAction *action : r->findChildren<QAction *>(QStringLiteral("CurrentDate")))
                QCOMPARE(action->isVisible(), action->property("Index").toInt() == 1);
            if (menuItem == QLatin1String("Esc"))
                QTest::keyClick(menu, Qt::Key_Escape);
            else
                QTest::mouseClick(menu, Qt::LeftButton, {},
                                  menu->actionGeometry(r->findChild<QAction *>(menuItem)).center());
            QTRY_VERIFY(!menu->isVisible());
        }

        // Then
        QFETCH(int, changes);
        QTRY_COMPARE(int(change.size()), changes);
        QTEST(r->Relative(), "relative");
        // The day-count field shows the count, or All; hidden behind the picker it keeps All.
        const bool allShown = days == All || target == QLatin1String("all");
        QCOMPARE(part<QLineEdit>(r, "DateLong")->text(),
                 allShown ? All.toString() : QString::number(days.toInt()));
        QCOMPARE(part<QAction>(r, "mnuRel")->text(),
                 r->Relative() ? QStringLiteral("Absolute Date") : QStringLiteral("Relative Date"));
        // All keeps the last day count, and the picker its date beneath the word.
        const int count = days == All ? -9 : days.toInt();
        const QDateTime date = day(2024, 5, 10).addDays(count);
        QCOMPARE(r->RetDate(), days == All ? All : QVariant(date));
        QVERIFY(r->RetNum() == count && part<UpDown>(r, "DateLongUD")->Value() == count);
        auto *picker = part<DatePicker>(r, "DateView");
        QCOMPARE(picker->dateEdit()->text(), date.toString(QStringLiteral("yyyy-MM-dd")));
        QCOMPARE(picker->showsAll(), days == All);
        const bool enter = QLatin1String(QTest::currentDataTag()) == QLatin1String("Return");
        QCOMPARE(m_platform.sentKeys(),
                 enter ? QStringList{QStringLiteral("{TAB}")} : QStringList());
    }
    void mouseEvents()
    {
        Form form;
        RelDate *r = form.add("D");
        QVERIFY(form.show());
        QStringList seen; // in the part's own coordinates
        connect(r, &RelDate::MouseMove, this, [&] { seen << QStringLiteral("Move"); });
        connect(r, &RelDate::MouseMoveXY, this, [&](qint16 &, qint16, float x, float y) {
            seen << QStringLiteral("XY %1 %2").arg(x).arg(y);
        });
        connect(r, &RelDate::MouseDown, this, [&](qint16 &button, qint16 &shift, float &, float &) {
            seen << QStringLiteral("Down %1 %2").arg(button).arg(shift);
            button = 0; // the host takes the right button: no menu
        });
        connect(r, &RelDate::MouseUp, this, [&](qint16 &button, qint16 &, float &, float &) {
            seen << QStringLiteral("Up %1").arg(button);
        });

        auto *edit = part(r, "DateLong");
        QTest::mouseMove(edit, QPoint(12, 7));
        QTRY_COMPARE(seen, (QStringList{QStringLiteral("Move"), QStringLiteral("XY 12 7")}));
        seen.clear();
        QTest::mouseClick(edit, Qt::RightButton, Qt::ShiftModifier, QPoint(5, 5));
        QCOMPARE(seen, (QStringList{QStringLiteral("Down 2 1"), QStringLiteral("Up 2")}));
        QVERIFY(!part(r, "PopUpDate")->isVisible());
        seen.clear();
        r->setRelative(false);
        QTest::mouseMove(part<DatePicker>(r, "DateView")->dateEdit(), QPoint(20, 9));
        QTRY_COMPARE(seen, (QStringList{QStringLiteral("XY 20 9"), QStringLiteral("Move")}));
    }
    void persistence()
    {
        Form form;
        form.add("DateTo");
        RelDate *r = form.add("DateFrom");
        MemoryPropertyBag untouched;
        r->WriteProperties(untouched);
        QCOMPARE(untouched.keys(), QStringList());

        // Every put reports its property, also the second one that changes nothing.
        const QStringList names = QStringLiteral("AllowAll Relative RetDate CheckBoxState Enabled "
                                                 "GlobalSynchro TopControl CustomFormat "
                                                 "MenuStateVisible MaxDate MinDate UpDown Border "
                                                 "Appearance")
                                      .split(QLatin1Char(' '));
        const QVariantList values = QVariantList()
            << false << false << day(2024, 5, 1, 9, 30) << int(rbsLeft) << false << int(srdSynchro)
            << QStringLiteral("dateto") << QStringLiteral("dd.MM.yyyy") << true << day(2030, 1, 1)
            << day(2000, 1, 1) << true << 0 << 0;
        for (int i = 0; i < 2 * names.size(); ++i) {
            const QString &name = names[i % names.size()];
            QSignalSpy changed(r, &Control::PropertyChanged);
            QVERIFY2(r->setProperty(qPrintable(name), values[i % names.size()]), qPrintable(name));
            QCOMPARE(changed.value(0).value(0).toString(), name);
        }
        MemoryPropertyBag bag;
        r->WriteProperties(bag);
        QStringList keys = names;
        keys.insert(2, QStringLiteral("RetNum"));
        QCOMPARE(bag.keys(), keys);
        QCOMPARE(bag.ReadProperty(QStringLiteral("RetNum")), QVariant(qint32(-9)));
        RelDate *copy = form.add("Copy", -1, false);
        copy->ReadProperties(bag);
        for (const QString &name : bag.keys())
            QVERIFY2(copy->property(qPrintable(name)) == r->property(qPrintable(name)),
                     qPrintable(name));
        QCOMPARE(part<DatePicker>(copy, "DateView")->dateEdit()->text(),
                 QStringLiteral("01.05.2024"));
        QCOMPARE(part<QLineEdit>(copy, "DateLong")->text(), QStringLiteral("-9"));
        QVERIFY(part<QAction>(copy, "mnuRel")->isVisible());

        // Saved as All and as an absolute date of today, which is not written and so loads as the
        // day of loading; restoring is no user change.
        RelDate *saved[] = {form.add("S0"), form.add("S1")};
        saved[0]->setRetDate(All);
        saved[1]->setRelative(false);
        MemoryPropertyBag bags[2];
        for (int i = 0; i < 2; ++i)
            saved[i]->WriteProperties(bags[i]);
        m_platform.setToday(QDate(2024, 6, 1));
        for (int i = 0; i < 2; ++i) {
            RelDate *loaded = form.add("L", -1, false);
            QSignalSpy change(loaded, &RelDate::Change);
            loaded->ReadProperties(bags[i]);
            QCOMPARE(change.size(), 0);
            QCOMPARE(loaded->RetDate(), i == 0 ? All : QVariant(day(2024, 6, 1)));
            QCOMPARE(part<DatePicker>(loaded, "DateView")->showsAll(), i == 0);
        }
    }
    void partnerNames_data()
    {
        QTest::addColumn<bool>("kept");
        for (const char *name : {"DateTo", "DATETO", "Arr(2)"})
            QTest::newRow(name) << true;
        // "Arr": the first same-named control is an array member, the walk ends there unresolved.
        // "Other" is no RelDate.
        for (const char *name : {"Arr(5)", "Arr(x)", "Arr(2", "NoSuchControl", "Arr", "Other"})
            QTest::newRow(name) << false;
    }
    void partnerNames()
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
        // A partner deleted from the form is forgotten when the name is next read, and reported
        // once.
        const QString base = name.section(QLatin1Char('('), 0, 0);
        qDeleteAll(form.widget.findChildren<Control *>(
            QRegularExpression(QLatin1Char('^') + base + QLatin1Char('$'),
                               QRegularExpression::CaseInsensitiveOption)));
        changed.clear();
        QVERIFY(self->TopControl().isEmpty() && self->TopControl().isEmpty());
        QCOMPARE(changed.count(), kept ? 1 : 0);
    }
    void bounds_data()
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
    void bounds()
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

        // A user's choice applies the bounds again: "Current Date" goes to today, then they act.
        if (self == All)
            return;
        r->findChildren<QAction *>(QStringLiteral("CurrentDate")).value(1)->trigger();
        QCOMPARE(r->RetDate(), expected);
    }
    void modePropagation()
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
    void layout_data()
    {
        QTest::addColumn<int>("boxState");
        QTest::addColumn<bool>("relative");
        for (int box : {rbsNotVisible, rbsRight, rbsLeft})
            for (bool relative : {true, false})
                QTest::addRow("box %d, %s", box, relative ? "relative" : "absolute")
                    << box << relative;
    }
    void layout()
    {
        QFETCH(int, boxState);
        QFETCH(bool, relative);
        // Given a date field at its own size (its height is the shell's: one line)
        RelDate field;
        RelDate *r = &field;
        r->setRelative(relative);
        r->setProperty("CheckBoxState", boxState);
        r->resize(r->sizeHint());
        r->show();
        QVERIFY(QTest::qWaitForWindowExposed(r));
        QWidget *box = part(r, "ChRel"), *view = part(r, "DateView"), *edit = part(r, "DateLong"),
                *spin = part(r, "DateLongUD");
        // Then it has room for the date and the box
        QVERIFY(r->sizeHint().width()
                >= view->sizeHint().width() + (box->isVisible() ? box->width() : 0));
        QCOMPARE(box->isVisible(), boxState != rbsNotVisible);
        QVERIFY(view->isVisible() != relative && edit->isVisible() == relative
                && spin->isVisible() == relative);
        // The date widgets share the width left by the box, centred in its slot, and reach under
        // the other edges.
        const QRect client = view->parentWidget()->rect();
        const QRect date = relative ? edit->geometry().united(spin->geometry()) : view->geometry();
        const QRect b = box->geometry();
        if (boxState == rbsRight) {
            QVERIFY(qAbs((b.left() - date.right()) - (client.right() + 1 - b.right())) <= 1);
            QCOMPARE(date.left(), client.left() - 2);
        } else if (boxState == rbsLeft) {
            QVERIFY(qAbs((b.left() - client.left()) - (date.left() - b.right())) <= 1);
        } else if (!relative) {
            QCOMPARE(view->geometry(), client.adjusted(-2, -2, 2, 2));
        }
        if (relative)
            QCOMPARE(edit->geometry().right() + 1, spin->geometry().left());
        QCOMPARE(date.top(), client.top() - 2);
    }
    void accessibleNames()
    {
        // A name the host gives once the form is shown leads the parts' names when one takes focus.
        Form form;
        RelDate *r = form.add("D");
        QVERIFY(form.show());
        r->setAccessibleName(QStringLiteral("From"));
        QWidget *spin = part(r, "DateLongUD");
        spin->setFocus();
        QTRY_VERIFY(spin->hasFocus());
        QCOMPARE(part(r, "DateView")->accessibleName(), QStringLiteral("From"));
        QCOMPARE(part(r, "all")->accessibleName(), QStringLiteral("From: any date"));
        QCOMPARE(part(r, "DateLong")->accessibleName(), QStringLiteral("From: Days from today"));
        QCOMPARE(part(r, "DateLong")->accessibleDescription(),
                 QStringLiteral("Input relative date"));
    }

private:
    TestPlatform m_platform{QDate(2024, 5, 10)};
};

QTEST_MAIN(tst_RelDate)
#include "tst_reldate.moc"
