#include <zelkon/common/datepicker.h>
#include <zelkon/common/error.h>
#include <zelkon/test/testplatform.h>

#include <QCalendarWidget>
#include <QDateTimeEdit>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>
#include <QTestEventList>

using namespace zelkon;

namespace {

QDateTime dt(int y, int m, int d, int h = 0, int min = 0)
{
    return QDateTime(QDate(y, m, d), QTime(h, min));
}

// A picker shown in an active window, with the focus.
struct Shown
{
    QWidget window;
    DatePicker *picker = new DatePicker(&window);

    bool show()
    {
        picker->setGeometry(10, 10, 180, 28);
        window.show();
        window.activateWindow();
        picker->setFocus();
        return QTest::qWaitForWindowActive(&window)
            && QTest::qWaitFor([&] { return picker->hasFocus(); });
    }
};

} // namespace

class tst_DatePicker : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void clamping_data();
    void clamping();
    void bounds();
    void allDisplay();
    void calendarDropDownAndCloseUp();
    void keyDownCanSwallowAKey();
    void customFormats_data();
    void customFormats();

private:
    TestPlatform m_platform{QDate(2024, 5, 10)};
};

void tst_DatePicker::clamping_data()
{
    QTest::addColumn<QDateTime>("assigned");
    QTest::addColumn<QDateTime>("expected");
    QTest::addColumn<int>("dayOfWeek"); // Sunday is 1
    // Within 2024 and starting from 2024-05-10 08:00: a clamped value keeps the picker's time.
    QTest::newRow("inside, own time") << dt(2024, 6, 1, 15, 30) << dt(2024, 6, 1, 15, 30) << 7;
    QTest::newRow("a sunday") << dt(2024, 5, 12, 9) << dt(2024, 5, 12, 9) << 1;
    QTest::newRow("before min") << dt(2023, 12, 31, 23, 59) << dt(2024, 1, 1, 8) << 2;
    QTest::newRow("after max") << dt(2030, 1, 1, 12) << dt(2024, 12, 31, 8) << 3;
    QTest::newRow("last day, late") << dt(2024, 12, 31, 23, 59) << dt(2024, 12, 31, 23, 59) << 3;
    QTest::newRow("same value") << dt(2024, 5, 10, 8) << dt(2024, 5, 10, 8) << 6;
}

void tst_DatePicker::clamping()
{
    QFETCH(QDateTime, assigned);
    QFETCH(QDateTime, expected);
    DatePicker picker;
    picker.setMinDate(dt(2024, 1, 1));
    picker.setMaxDate(dt(2024, 12, 31));
    picker.setValue(dt(2024, 5, 10, 8));
    QSignalSpy change(&picker, &DatePicker::Change);
    QVERIFY(picker.setProperty("Value", assigned));
    QCOMPARE(picker.Value(), expected);
    QCOMPARE(picker.dateEdit()->date(), expected.date());
    QCOMPARE(change.size(), expected == dt(2024, 5, 10, 8) ? 0 : 1);
    QTEST(int(picker.property("DayOfWeek").toInt()), "dayOfWeek");
    QCOMPARE(QTime(picker.Hour(), picker.Minute()), expected.time());
}

void tst_DatePicker::bounds()
{
    // Given a picker at a time of day, when a bound moves past its value, then the value follows
    DatePicker picker;
    picker.setValue(dt(2024, 5, 10, 9, 15));
    QSignalSpy change(&picker, &DatePicker::Change);
    picker.setMinDate(dt(2024, 6, 1));
    picker.setMinDate(dt(2024, 1, 1)); // widening moves nothing
    QCOMPARE(picker.Value(), dt(2024, 6, 1, 9, 15));
    QCOMPARE(change.size(), 1);
    // A minimum after the maximum is refused with error 5, and so is an invalid date.
    picker.setMaxDate(dt(2024, 12, 31));
    QVERIFY_THROWS_EXCEPTION(Error, picker.setMinDate(dt(2025, 1, 1)));
    QCOMPARE(picker.MinDate(), dt(2024, 1, 1));
    QVERIFY_THROWS_EXCEPTION(Error, picker.setValue(QDateTime()));
}

void tst_DatePicker::allDisplay()
{
    Shown shown;
    DatePicker *picker = shown.picker;
    picker->setCustomFormat(QStringLiteral("dd.MM.yyyy"));
    QVERIFY(shown.show());
    auto *all = picker->findChild<QLineEdit *>(QStringLiteral("all"));

    QSignalSpy click(picker, &DatePicker::Click);
    QSignalSpy change(picker, &DatePicker::Change);
    picker->setProperty("CustomFormat", QStringLiteral("All"));
    QVERIFY(picker->showsAll() && all->isVisible() && !picker->dateEdit()->isVisible());
    // Typing does not edit the word; clicking it is reported to the owner.
    QTest::mouseClick(all, Qt::LeftButton, {}, QPoint(5, 5));
    QTest::keyClicks(all, QStringLiteral("12"));
    QCOMPARE(all->text(), QStringLiteral("All"));
    QCOMPARE(click.size(), 1);
    QCOMPARE(change.size(), 0);

    picker->setCustomFormat(QString());
    QVERIFY(!all->isVisible() && picker->dateEdit()->isVisible());
    QCOMPARE(picker->dateEdit()->text(), QStringLiteral("5/10/2024")); // the locale's short date
}

void tst_DatePicker::calendarDropDownAndCloseUp()
{
    Shown shown;
    DatePicker *picker = shown.picker;
    QVERIFY(shown.show());
    QStringList order;
    connect(picker, &DatePicker::DropDown, this, [&] { order << QStringLiteral("DropDown"); });
    connect(picker, &DatePicker::CloseUp, this, [&] { order << QStringLiteral("CloseUp"); });
    connect(picker, &DatePicker::Change, this, [&] { order << QStringLiteral("Change"); });

    QDateTimeEdit *edit = picker->dateEdit();
    QTest::mouseClick(edit, Qt::LeftButton, {}, QPoint(edit->width() - 6, edit->height() / 2));
    QCalendarWidget *calendar = edit->calendarWidget();
    QTRY_VERIFY(calendar->isVisible());
    QCOMPARE(order, QStringList{QStringLiteral("DropDown")});
    for (Qt::Key key : {Qt::Key_Right, Qt::Key_Return})
        QTest::keyClick(calendar->focusWidget() ? calendar->focusWidget() : calendar, key);
    QTRY_VERIFY(!calendar->isVisible());
    QCOMPARE(order,
             (QStringList{QStringLiteral("DropDown"), QStringLiteral("Change"),
                          QStringLiteral("CloseUp")}));
    QCOMPARE(picker->Value(), dt(2024, 5, 11));

    // With spin buttons there is no calendar to drop down.
    picker->setProperty("UpDown", true);
    QVERIFY(!edit->calendarPopup());
    QTest::mouseClick(edit, Qt::LeftButton, {}, QPoint(edit->width() - 6, edit->height() / 4));
    QTRY_VERIFY(!calendar->isVisible());
    QVERIFY(picker->Value() > dt(2024, 5, 11));
    QCOMPARE(order.count(QStringLiteral("DropDown")), 1);
    QCOMPARE(order.count(QStringLiteral("Change")), 2);
}

void tst_DatePicker::keyDownCanSwallowAKey()
{
    Shown shown;
    shown.picker->setMaxDate(dt(2024, 5, 11));
    shown.picker->setValue(dt(2024, 5, 10, 15, 30));
    shown.picker->setCustomFormat(QStringLiteral("yyyy-MM-dd"));
    QVERIFY(shown.show());
    QList<int> codes;
    connect(shown.picker, &DatePicker::KeyDown, this, [&](qint16 &code, qint16 &shift) {
        codes << code << shift;
        if (code == 38 && codes.size() < 8) // the first Up is swallowed
            code = 0;
    });
    QSignalSpy change(shown.picker, &DatePicker::Change);
    // Shift is a key of its own before Shift+End, which goes to the day section; the first Up is
    // swallowed, Down moves a day back, and Up moves only up to the maximum.
    QTestEventList keys;
    keys.addKeyClick(Qt::Key_End, Qt::ShiftModifier);
    for (Qt::Key key : {Qt::Key_Up, Qt::Key_Down, Qt::Key_Up, Qt::Key_Up, Qt::Key_Up})
        keys.addKeyClick(key);
    keys.simulate(QApplication::focusWidget());
    QCOMPARE(codes.mid(0, 8), (QList<int>{16, 1, 35, 1, 38, 0, 40, 0}));
    QCOMPARE(shown.picker->Value(), dt(2024, 5, 11, 15, 30)); // the time of day is kept
    QCOMPARE(change.size(), 3);
}

void tst_DatePicker::customFormats_data()
{
    QTest::addColumn<QString>("shown"); // 2024-05-10 15:07, in the platform picker's codes
    auto row = [](const char *format, const char *shown) {
        QTest::newRow(format) << QString::fromLatin1(shown);
    };
    row("dd.MM.yyyy HH:mm", "10.05.2024 15:07");
    row("M/d/yy h:m", "5/10/24 15:7"); // months and minutes as in Qt
    row("h:mm t", "3:07 PM"); // no time zone
    row("hh:mm tt", "03:07 PM");
    row("d MMM yyy", "10 May 2024");
    row("'at' HH 'o''clock' tt", "at 15 o'clock PM");
    row("d a z A", "10 a z A");
    row("dd 'tt", "10 tt");
}

void tst_DatePicker::customFormats()
{
    DatePicker picker;
    picker.setValue(dt(2024, 5, 10, 15, 7));
    picker.setCustomFormat(QString::fromLatin1(QTest::currentDataTag()));
    QTEST(picker.dateEdit()->text(), "shown");
}

QTEST_MAIN(tst_DatePicker)
#include "tst_datepicker.moc"
