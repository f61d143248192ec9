#include <zelkon/reldate/relativedate.h>
#include <zelkon/test/testplatform.h>

#include <QTest>

using namespace zelkon;

namespace {

const QVariant All = QStringLiteral("All");
const QDate today(2024, 5, 10);

QDateTime day(int y, int m, int d, int h = 0, int min = 0)
{
    return QDateTime(QDate(y, m, d), QTime(h, min));
}

// A value restored in the given mode holding `value`: a day count (int), a date or All. The other
// form was saved too and is derived again: a day count of 3 (which All keeps), or an old date.
RelativeDate valueOf(bool relative, const QVariant &value)
{
    RelativeDate v;
    v.setAllowAll(true);
    if (relative && !RelativeDate::isAll(value))
        v.restore(true, value.toInt(), day(2020, 1, 1), today);
    else
        v.restore(relative, 3, value, today);
    return v;
}

} // namespace

class tst_RelativeDate : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void reading_data();
    void reading();
    void switchingMode_data();
    void switchingMode();
    void allNeedsAllowAll();
    void typedDayCount_data();
    void typedDayCount();

private:
    TestPlatform m_platform{today}; // pins the locale that numbers are typed in
};

void tst_RelativeDate::reading_data()
{
    QTest::addColumn<bool>("relative"); // holding the day count, else the date
    QTest::addColumn<QVariant>("date");
    QTest::addColumn<int>("days");
    QTest::addColumn<QVariant>("dateNextDay"); // read again a day later
    QTest::addColumn<int>("daysNextDay");
    auto row
        = [](const char *tag, bool relative, const QVariant &date, int days, const QVariant &next,
             int daysNext) { QTest::newRow(tag) << relative << date << days << next << daysNext; };
    const QVariant late = day(2024, 5, 10, 23, 59), yesterday = day(2024, 5, 9, 23, 59);
    row("relative, today", true, day(2024, 5, 10), 0, day(2024, 5, 11), 0);
    row("relative, a week back", true, day(2024, 5, 3), -7, day(2024, 5, 4), -7);
    row("relative, All", true, All, 3, All, 3);
    row("absolute, today late", false, late, 0, late, -1);
    row("absolute, tomorrow", false, day(2024, 5, 11), 1, day(2024, 5, 11), 0);
    row("absolute, yesterday late", false, yesterday, -1, yesterday, -2);
    row("absolute, a year on", false, day(2025, 5, 10), 365, day(2025, 5, 10), 364);
    row("absolute, All", false, All, 3, All, 3);
}

void tst_RelativeDate::reading()
{
    QFETCH(bool, relative);
    QFETCH(QVariant, date);
    QFETCH(int, days);
    RelativeDate v = valueOf(relative, relative && date != All ? QVariant(days) : date);
    QTEST(v.storedDate(), "date"); // restoring derived the other form
    QTEST(int(v.storedDayCount()), "days");
    QTEST(v.date(today), "date");
    QTEST(int(v.dayCount(today)), "days");
    QTEST(v.date(today.addDays(1)), "dateNextDay");
    QTEST(int(v.dayCount(today.addDays(1))), "daysNextDay");
    QCOMPARE(v.isRelative(), relative);
}

void tst_RelativeDate::switchingMode_data()
{
    QTest::addColumn<bool>("relative");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QVariant>("date"); // after the switch, which is made a day later
    QTest::addColumn<int>("days");
    // The calendar day stays; a date taken over from a day count is at midnight.
    QTest::newRow("to absolute") << true << QVariant(-7) << QVariant(day(2024, 5, 4)) << -7;
    QTest::newRow("to relative") << false << QVariant(day(2024, 5, 12, 15))
                                 << QVariant(day(2024, 5, 12)) << 1;
    QTest::newRow("to absolute, All") << true << All << All << 3;
    QTest::newRow("to relative, All") << false << All << All << 3;
}

void tst_RelativeDate::switchingMode()
{
    QFETCH(bool, relative);
    QFETCH(QVariant, value);
    RelativeDate v = valueOf(relative, value);
    const QDate later = today.addDays(1);
    QVERIFY(!v.setRelative(relative, later)); // already in that mode
    QVERIFY(v.setRelative(!relative, later));
    QCOMPARE(v.isRelative(), !relative);
    QTEST(v.date(later), "date");
    QTEST(int(v.dayCount(later)), "days");
    // There and back keeps the day.
    QVERIFY(v.setRelative(relative, later));
    QTEST(v.date(later), "date");
}

void tst_RelativeDate::allNeedsAllowAll()
{
    RelativeDate v; // newly placed: absolute, no date, All not allowed
    QVERIFY(!v.setAll());
    QVERIFY(!v.isAll() && !v.storedDate().isValid());
    v.setAllowAll(true);
    QVERIFY(v.setAll());
    QVERIFY(v.isAll());
    // "All" is the string and nothing else.
    for (const QVariant &other : {QVariant(QStringLiteral("all")), QVariant(QByteArray("All"))})
        QVERIFY(!RelativeDate::isAll(other));
    // A copy is a value of its own.
    RelativeDate copy = v;
    copy.setStoredDate(day(2024, 1, 1));
    QVERIFY(v.isAll() && !copy.isAll());
}

void tst_RelativeDate::typedDayCount_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QVariant>("days"); // Empty: refused
    // From 2024-05-10 within 2024-05-01 .. 2024-06-01: -9 .. 22; a half rounds to even.
    const std::pair<const char *, QVariant> rows[] = {
        {"+5", 5},  {" 7", 7},   {"-9", -9}, {"22", 22},  {"2.5", 2},         {"-10", {}},
        {"23", {}}, {"abc", {}}, {"", {}},   {"All", {}}, {"1000000000", {}}, {"3000000000", {}}};
    for (const auto &[text, days] : rows)
        QTest::newRow(text) << QString::fromLatin1(text) << days;
}

void tst_RelativeDate::typedDayCount()
{
    QFETCH(QString, text);
    QFETCH(QVariant, days);
    const auto typed
        = RelativeDate::typedDayCount(text, today, QDate(2024, 5, 1), QDate(2024, 6, 1));
    QCOMPARE(typed.has_value(), days.isValid());
    if (typed)
        QCOMPARE(*typed, days.toInt());
}

QTEST_MAIN(tst_RelativeDate)
#include "tst_relativedate.moc"
