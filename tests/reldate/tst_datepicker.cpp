#include <zelkon/common/datepicker.h>
#include <zelkon/common/error.h>
#include <zelkon/common/testplatform.h>

#include <QCalendarWidget>
#include <QDateTimeEdit>
#include <QLineEdit>
#include <QSignalSpy>
#include <QStyle>
#include <QStyleOptionSpinBox>
#include <QTest>
#include <QVBoxLayout>

using namespace zelkon;

class tst_DatePicker : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void clamping_data();
    void clamping();
    void boundsMoveTheValue();
    void crossedBoundsAreRefused();
    void dayOfWeek_data();
    void dayOfWeek();
    void allDisplay();
    void keyEditKeepsTimeOfDay();
    void calendarDropDownAndCloseUp();
    void keyDownCanSwallowAKey();

private:
    TestPlatform m_platform{QDate(2024, 5, 10)};
};

static QDateTime dt(int y, int m, int d, int h = 0, int min = 0)
{
    return QDateTime(QDate(y, m, d), QTime(h, min));
}

void tst_DatePicker::clamping_data()
{
    QTest::addColumn<QDateTime>("current");
    QTest::addColumn<QDateTime>("assigned");
    QTest::addColumn<QDateTime>("expected");
    QTest::addColumn<bool>("changed");

    // Min 2024-01-01, max 2024-12-31; the clamped value keeps the time the picker already had.
    QTest::newRow("inside keeps its own time")
        << dt(2024, 5, 10, 8) << dt(2024, 6, 1, 15, 30) << dt(2024, 6, 1, 15, 30) << true;
    QTest::newRow("before min") << dt(2024, 5, 10, 8) << dt(2023, 12, 31, 23, 59)
                                << dt(2024, 1, 1, 8) << true;
    QTest::newRow("after max") << dt(2024, 5, 10) << dt(2030, 1, 1, 12) << dt(2024, 12, 31) << true;
    QTest::newRow("last day of range, late")
        << dt(2024, 5, 10) << dt(2024, 12, 31, 23, 59) << dt(2024, 12, 31, 23, 59) << true;
    QTest::newRow("same value, no change")
        << dt(2024, 5, 10, 8) << dt(2024, 5, 10, 8) << dt(2024, 5, 10, 8) << false;
}

void tst_DatePicker::clamping()
{
    QFETCH(QDateTime, current);
    QFETCH(QDateTime, assigned);
    QFETCH(QDateTime, expected);
    QFETCH(bool, changed);

    DatePicker picker;
    picker.setMinDate(dt(2024, 1, 1));
    picker.setMaxDate(dt(2024, 12, 31));
    picker.setValue(current);
    QSignalSpy change(&picker, &DatePicker::Change);

    QVERIFY(picker.setProperty("Value", assigned));
    QCOMPARE(picker.Value(), expected);
    QCOMPARE(picker.dateEdit()->date(), expected.date());
    QCOMPARE(change.size(), changed ? 1 : 0);
}

void tst_DatePicker::boundsMoveTheValue()
{
    DatePicker picker;
    QCOMPARE(picker.MinDate(), dt(1601, 1, 1));
    QCOMPARE(picker.MaxDate(), dt(9999, 12, 31));
    QCOMPARE(picker.Value(), dt(2024, 5, 10)); // today, at midnight
    picker.setValue(dt(2024, 5, 10, 9, 15));
    QSignalSpy change(&picker, &DatePicker::Change);

    picker.setMinDate(dt(2024, 6, 1));
    QCOMPARE(picker.Value(), dt(2024, 6, 1, 9, 15));
    QCOMPARE(change.size(), 1);
    picker.setMinDate(dt(2024, 1, 1)); // widening moves nothing
    QCOMPARE(picker.Value(), dt(2024, 6, 1, 9, 15));
    QCOMPARE(change.size(), 1);
}

void tst_DatePicker::crossedBoundsAreRefused()
{
    DatePicker picker;
    picker.setMaxDate(dt(2024, 12, 31));
    try {
        picker.setMinDate(dt(2025, 1, 1));
        QFAIL("a minimum after the maximum was taken");
    } catch (const Error &error) {
        QCOMPARE(error.number(), int(InvalidProcedureCall));
    }
    QCOMPARE(picker.MinDate(), dt(1601, 1, 1));
    QVERIFY_THROWS_EXCEPTION(Error, picker.setValue(QDateTime()));
}

void tst_DatePicker::dayOfWeek_data()
{
    QTest::addColumn<QDate>("date");
    QTest::addColumn<int>("dayOfWeek");
    QTest::newRow("sunday") << QDate(2024, 5, 12) << 1;
    QTest::newRow("monday") << QDate(2024, 5, 13) << 2;
    QTest::newRow("friday") << QDate(2024, 5, 10) << 6;
    QTest::newRow("saturday") << QDate(2024, 5, 11) << 7;
    QTest::newRow("leap day") << QDate(2024, 2, 29) << 5;
}

void tst_DatePicker::dayOfWeek()
{
    QFETCH(QDate, date);
    QFETCH(int, dayOfWeek);
    DatePicker picker;
    picker.setValue(QDateTime(date, QTime(13, 45, 30)));
    QCOMPARE(picker.property("DayOfWeek").toInt(), dayOfWeek);
    QCOMPARE(picker.property("Day").toInt(), date.day());
    QCOMPARE(picker.property("Month").toInt(), date.month());
    QCOMPARE(picker.property("Year").toInt(), date.year());
    QCOMPARE(picker.property("Hour").toInt(), 13);
    QCOMPARE(picker.property("Minute").toInt(), 45);
    QCOMPARE(picker.property("Second").toInt(), 30);
}

void tst_DatePicker::allDisplay()
{
    QWidget w;
    auto *picker = new DatePicker(&w);
    picker->setGeometry(10, 10, 160, 28);
    picker->setCustomFormat(QStringLiteral("dd.MM.yyyy"));
    picker->setValue(dt(2024, 5, 10));
    w.show();
    w.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&w));

    auto *all = picker->findChild<QLineEdit *>(QStringLiteral("all"));
    QVERIFY(all);
    QCOMPARE(picker->dateEdit()->text(), QStringLiteral("10.05.2024"));
    QVERIFY(!all->isVisible());

    QSignalSpy click(picker, &DatePicker::Click);
    QSignalSpy change(picker, &DatePicker::Change);
    picker->setProperty("CustomFormat", QStringLiteral("All"));
    QVERIFY(picker->showsAll());
    QVERIFY(all->isVisible());
    QVERIFY(!picker->dateEdit()->isVisible());
    QCOMPARE(all->text(), QStringLiteral("All"));

    // Typing does not edit the word; clicking it is reported to the owner.
    QTest::mouseClick(all, Qt::LeftButton, {}, QPoint(5, 5));
    QCOMPARE(click.size(), 1);
    QTest::keyClicks(all, QStringLiteral("12"));
    QCOMPARE(all->text(), QStringLiteral("All"));
    QCOMPARE(change.size(), 0);
    QCOMPARE(picker->Value(), dt(2024, 5, 10));

    picker->setCustomFormat(QString());
    QVERIFY(!all->isVisible());
    QVERIFY(picker->dateEdit()->isVisible());
    QCOMPARE(picker->dateEdit()->text(), QStringLiteral("5/10/2024")); // the locale's short date
}

void tst_DatePicker::keyEditKeepsTimeOfDay()
{
    QWidget w;
    auto *picker = new DatePicker(&w);
    picker->setGeometry(10, 10, 160, 28);
    picker->setCustomFormat(QStringLiteral("yyyy-MM-dd"));
    picker->setMaxDate(dt(2024, 5, 11));
    picker->setValue(dt(2024, 5, 10, 15, 30));
    w.show();
    w.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&w));
    picker->setFocus();
    QTRY_VERIFY(picker->dateEdit()->hasFocus());

    QSignalSpy change(picker, &DatePicker::Change);
    QTest::keyClick(picker->dateEdit(), Qt::Key_End); // the day section
    QTest::keyClick(picker->dateEdit(), Qt::Key_Up);
    QCOMPARE(change.size(), 1);
    QCOMPARE(picker->Value(), dt(2024, 5, 11, 15, 30));
    QCOMPARE(picker->DayOfWeek(), 7);
    QTest::keyClick(picker->dateEdit(), Qt::Key_Up); // beyond the maximum: nothing moves
    QCOMPARE(picker->Value(), dt(2024, 5, 11, 15, 30));
    QCOMPARE(change.size(), 1);
}

void tst_DatePicker::calendarDropDownAndCloseUp()
{
    QWidget w;
    auto *picker = new DatePicker(&w);
    picker->setGeometry(10, 10, 180, 28);
    picker->setValue(dt(2024, 5, 10));
    w.show();
    w.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&w));

    QStringList order;
    connect(picker, &DatePicker::DropDown, this, [&] { order << QStringLiteral("DropDown"); });
    connect(picker, &DatePicker::CloseUp, this, [&] { order << QStringLiteral("CloseUp"); });
    connect(picker, &DatePicker::Change, this, [&] { order << QStringLiteral("Change"); });

    QDateTimeEdit *edit = picker->dateEdit();
    QTest::mouseClick(edit, Qt::LeftButton, {}, QPoint(edit->width() - 6, edit->height() / 2));
    QCalendarWidget *calendar = edit->calendarWidget();
    QVERIFY(calendar);
    QTRY_VERIFY(calendar->isVisible());
    QCOMPARE(order, QStringList{QStringLiteral("DropDown")});

    QTest::keyClick(calendar->focusWidget() ? calendar->focusWidget() : calendar, Qt::Key_Right);
    QTest::keyClick(calendar->focusWidget() ? calendar->focusWidget() : calendar, Qt::Key_Return);
    QTRY_VERIFY(!calendar->isVisible());
    QCOMPARE(order,
             (QStringList{QStringLiteral("DropDown"), QStringLiteral("Change"),
                          QStringLiteral("CloseUp")}));
    QCOMPARE(picker->Value(), dt(2024, 5, 11));

    // With spin buttons there is no calendar to drop down.
    picker->setProperty("UpDown", true);
    QVERIFY(!edit->calendarPopup());
    QTest::mouseClick(edit, Qt::LeftButton, {}, QPoint(edit->width() - 6, edit->height() / 4));
    QCOMPARE(order.count(QStringLiteral("DropDown")), 1);
    QTRY_VERIFY(!calendar->isVisible());
    QVERIFY(picker->Value() > dt(2024, 5, 11));
    QCOMPARE(order.count(QStringLiteral("Change")), 2);
}

void tst_DatePicker::keyDownCanSwallowAKey()
{
    QWidget w;
    auto *picker = new DatePicker(&w);
    picker->setGeometry(10, 10, 160, 28);
    picker->setCustomFormat(QStringLiteral("yyyy-MM-dd"));
    w.show();
    w.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&w));
    picker->setFocus();
    QTRY_VERIFY(picker->dateEdit()->hasFocus());

    QList<int> codes;
    connect(picker, &DatePicker::KeyDown, this, [&](qint16 &code, qint16 &shift) {
        codes << code << shift;
        if (code == 38) // Up: swallowed
            code = 0;
    });
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_End, Qt::ShiftModifier);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Up);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down);
    // Shift is a key of its own before Shift+End.
    QCOMPARE(codes, (QList<int>{16, 1, 35, 1, 38, 0, 40, 0}));
    QCOMPARE(picker->Value(), dt(2024, 5, 9));
}

QTEST_MAIN(tst_DatePicker)
#include "tst_datepicker.moc"
