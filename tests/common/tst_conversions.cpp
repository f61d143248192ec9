// Conversions under the platform's rules: rounding, overflow, locales, awkward doubles, dates.
#include "support/errorof.h"

#include <zelkon/common/conversions.h>
#include <zelkon/common/error.h>
#include <zelkon/common/variants.h>
#include <zelkon/test/testplatform.h>

#include <QTest>

#include <cmath>
#include <limits>

using namespace zelkon;

namespace {
const QLocale english(QLocale::English, QLocale::UnitedStates);
const QLocale german(QLocale::German, QLocale::Germany);
} // namespace

class tst_Conversions : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cstrDouble_data();
    void cstrDouble();
    void cstrVariant();
    void integerRounding_data();
    void integerRounding();
    void isNumeric_data();
    void isNumeric();
    void cdblUnderLocales();
    void bounds();
    void dateArithmetic_data();
    void dateArithmetic();
    void dateErrors();
    void serialDates();
    void cdate();
    void numberPattern_data();
    void numberPattern();
    void trim();
};

void tst_Conversions::cstrDouble_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<QLocale>("locale");
    QTest::addColumn<QString>("expected");
    QTest::newRow("sum that is not 0.3") << 0.1 + 0.2 << english << "0.3";
    QTest::newRow("third") << 1.0 / 3 << english << "0.333333333333333";
    QTest::newRow("two thirds rounds") << 2.0 / 3 << english << "0.666666666666667";
    QTest::newRow("integer") << 100.0 << english << "100";
    QTest::newRow("zero") << 0.0 << english << "0";
    QTest::newRow("negative zero") << -0.0 << english << "0";
    QTest::newRow("negative") << -2.5 << english << "-2.5";
    QTest::newRow("15 digits stay fixed") << 123456789012345.0 << english << "123456789012345";
    QTest::newRow("16 digits round to 15")
        << 1234567890123456.0 << english << "1.23456789012346E+15";
    QTest::newRow("1E15") << 1e15 << english << "1E+15";
    QTest::newRow("ten thousandth fixed") << 0.0001 << english << "0.0001";
    QTest::newRow("hundred thousandth scientific") << 0.00001 << english << "1E-05";
    QTest::newRow("small mantissa") << 1.5e-7 << english << "1.5E-07";
    QTest::newRow("large exponent") << 1.25e123 << english << "1.25E+123";
    QTest::newRow("denormal") << 5e-324 << english << "5E-324"; // shortest that reads back
    QTest::newRow("max double") << std::numeric_limits<double>::max() << english
                                << "1.79769313486232E+308";
    QTest::newRow("german separator") << 2.5 << german << "2,5";
    QTest::newRow("german small") << -0.0625 << german << "-0,0625";
}

void tst_Conversions::cstrDouble()
{
    QFETCH(double, value);
    QFETCH(QLocale, locale);
    QFETCH(QString, expected);
    TestPlatform platform(QDate(2024, 5, 10), locale);
    QCOMPARE(CStr(value), expected);
    QCOMPARE(CStr(QVariant(value)), expected);
}

void tst_Conversions::cstrVariant()
{
    TestPlatform platform;
    QCOMPARE(CStr(QVariant()), QString());
    QCOMPARE(CStr(QVariant(true)), QStringLiteral("True"));
    QCOMPARE(CStr(QVariant::fromValue(qint16(-7))), QStringLiteral("-7"));
    QCOMPARE(CStr(QVariant(0.1f)), QStringLiteral("0.1"));
    QCOMPARE(errorOf([] { CStr(nullVariant()); }), int(InvalidUseOfNull));
    QCOMPARE(errorOf([] { CStr(QVariant::fromValue(QVariantList{1})); }), int(TypeMismatch));
}

void tst_Conversions::integerRounding_data()
{
    QTest::addColumn<QVariant>("input");
    QTest::addColumn<qint64>("expectedLong"); // or the error number, negated, below -1e12
    QTest::addColumn<qint64>("expectedInt");
    const qint64 overflow = -1'000'000'000'006;
    QTest::newRow("half to even down") << QVariant(2.5) << qint64(2) << qint64(2);
    QTest::newRow("half to even up") << QVariant(3.5) << qint64(4) << qint64(4);
    QTest::newRow("negative half") << QVariant(-2.5) << qint64(-2) << qint64(-2);
    QTest::newRow("above half") << QVariant(2.5000001) << qint64(3) << qint64(3);
    QTest::newRow("text") << QVariant(QStringLiteral(" 1,234.5 ")) << qint64(1234) << qint64(1234);
    QTest::newRow("true") << QVariant(true) << qint64(-1) << qint64(-1);
    QTest::newRow("empty") << QVariant() << qint64(0) << qint64(0);
    QTest::newRow("int16 edge") << QVariant(32767.4) << qint64(32767) << qint64(32767);
    QTest::newRow("int16 past edge") << QVariant(32767.5) << qint64(32768) << overflow;
    QTest::newRow("int16 negative edge") << QVariant(-32768.5) << qint64(-32768) << qint64(-32768);
    QTest::newRow("int32 edge") << QVariant(2147483647.4) << qint64(2147483647) << overflow;
    QTest::newRow("int32 past edge") << QVariant(2147483647.5) << overflow << overflow;
    QTest::newRow("int32 negative edge")
        << QVariant(-2147483648.5) << qint64(-2147483648LL) << overflow;
    QTest::newRow("int32 below") << QVariant(-2147483649.0) << overflow << overflow;
    QTest::newRow("huge text") << QVariant(QStringLiteral("1e300")) << overflow << overflow;
}

void tst_Conversions::integerRounding()
{
    QFETCH(QVariant, input);
    QFETCH(qint64, expectedLong);
    QFETCH(qint64, expectedInt);
    TestPlatform platform;
    if (expectedLong < -1'000'000'000'000)
        QCOMPARE(errorOf([&] { CLng(input); }), int(Overflow));
    else
        QCOMPARE(qint64(CLng(input)), expectedLong);
    if (expectedInt < -1'000'000'000'000)
        QCOMPARE(errorOf([&] { CInt(input); }), int(Overflow));
    else
        QCOMPARE(qint64(CInt(input)), expectedInt);
}

void tst_Conversions::isNumeric_data()
{
    QTest::addColumn<QLocale>("locale");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("numeric");
    QTest::addColumn<double>("value");
    QTest::newRow("en plain") << english << "42" << true << 42.0;
    QTest::newRow("en blanks") << english << "  -42.5\t" << true << -42.5;
    QTest::newRow("en grouping") << english << "1,234,567.25" << true << 1234567.25;
    QTest::newRow("en plus and leading point") << english << "+.5" << true << 0.5;
    QTest::newRow("en trailing point") << english << "7." << true << 7.0;
    QTest::newRow("en exponent") << english << "1e3" << true << 1000.0;
    QTest::newRow("en 200 digits")
        << english << QString(QLatin1Char('1') + QString(199, QLatin1Char('0'))) << true << 1e199;
    QTest::newRow("en two points") << english << "1.2.3" << false << 0.0;
    QTest::newRow("en grouping after point") << english << "1.2,3" << false << 0.0;
    QTest::newRow("en empty") << english << "" << false << 0.0;
    QTest::newRow("en only sign") << english << "-" << false << 0.0;
    QTest::newRow("en only separator") << english << "," << false << 0.0;
    QTest::newRow("en letters") << english << "12abc" << false << 0.0;
    QTest::newRow("en inner blank") << english << "1 2" << false << 0.0;
    QTest::newRow("en half exponent") << english << "1e" << false << 0.0;
    QTest::newRow("de decimal comma") << german << "1,5" << true << 1.5;
    QTest::newRow("de grouping point") << german << "1.234,5" << true << 1234.5;
    QTest::newRow("de point is grouping") << german << "1.5" << true << 15.0;
    QTest::newRow("de two commas") << german << "1,2,3" << false << 0.0;
}

void tst_Conversions::isNumeric()
{
    QFETCH(QLocale, locale);
    QFETCH(QString, text);
    QFETCH(bool, numeric);
    QFETCH(double, value);
    TestPlatform platform(QDate(2024, 5, 10), locale);
    QCOMPARE(IsNumeric(text), numeric);
    if (numeric)
        QCOMPARE(CDbl(text), value);
    else
        QCOMPARE(errorOf([&] { CDbl(text); }), int(TypeMismatch));
}

void tst_Conversions::cdblUnderLocales()
{
    TestPlatform platform;
    QVERIFY(IsNumeric(QVariant(3)));
    QVERIFY(IsNumeric(QVariant()));
    QVERIFY(!IsNumeric(nullVariant()));
    QVERIFY(!IsNumeric(QVariant(QDateTime(QDate(2024, 1, 1), QTime()))));
    QCOMPARE(CDbl(QVariant(QDateTime(QDate(1900, 1, 1), QTime(12, 0)))), 2.5);
    QCOMPARE(errorOf([] { CDbl(nullVariant()); }), int(InvalidUseOfNull));
}

void tst_Conversions::bounds()
{
    const QVariant list = QVariantList{1, 2, 3};
    QCOMPARE(LBound(list), 0);
    QCOMPARE(UBound(list), 2);
    QCOMPARE(UBound(QVariant(QVariantList())), -1);
    QCOMPARE(errorOf([&] { UBound(list, 2); }), int(SubscriptOutOfRange));

    const QVariant grid = QVariant::fromValue(VariantArray({{0, 1}, {-2, 4}}));
    QCOMPARE(LBound(grid, 2), -2);
    QCOMPARE(UBound(grid, 2), 4);
    QCOMPARE(UBound(grid, 1), 1);
    QCOMPARE(errorOf([&] { UBound(grid, 3); }), int(SubscriptOutOfRange));
    QCOMPARE(errorOf([&] { UBound(grid, 0); }), int(SubscriptOutOfRange));
    QCOMPARE(errorOf([] { UBound(QVariant(5)); }), int(TypeMismatch));
    QCOMPARE(errorOf([] { UBound(QVariant()); }), int(TypeMismatch));

    VariantArray a({{0, 1}, {0, 2}});
    a.at({1, 2}) = 42;
    QCOMPARE(a.at({1, 2}).toInt(), 42);
    QVERIFY(IsEmpty(a.at({0, 2})));
    QCOMPARE(errorOf([&] { a.at({2, 0}); }), int(SubscriptOutOfRange));
    QCOMPARE(errorOf([&] { a.at({0}); }), int(SubscriptOutOfRange));
    QCOMPARE(errorOf([] { VariantArray({{0, -3}}); }), int(SubscriptOutOfRange));
    QCOMPARE(VariantArray({{0, -1}}).size(), 0);
}

void tst_Conversions::dateArithmetic_data()
{
    QTest::addColumn<QString>("interval");
    QTest::addColumn<QDateTime>("from");
    QTest::addColumn<QDateTime>("to");
    QTest::addColumn<qint64>("difference");
    const QDateTime base(QDate(2024, 5, 10), QTime(0, 0));
    QTest::newRow("same day late")
        << "d" << base << QDateTime(QDate(2024, 5, 10), QTime(23, 59)) << qint64(0);
    QTest::newRow("next midnight") << "d" << QDateTime(QDate(2024, 5, 10), QTime(23, 59))
                                   << QDateTime(QDate(2024, 5, 11), QTime(0, 0)) << qint64(1);
    QTest::newRow("yesterday late")
        << "d" << base << QDateTime(QDate(2024, 5, 9), QTime(23, 59)) << qint64(-1);
    QTest::newRow("day of year") << "y" << QDateTime(QDate(2024, 12, 31), QTime(8, 0))
                                 << QDateTime(QDate(2025, 1, 1), QTime(7, 0)) << qint64(1);
    QTest::newRow("leap year span") << "d" << QDateTime(QDate(2024, 2, 28), QTime())
                                    << QDateTime(QDate(2024, 3, 1), QTime()) << qint64(2);
    QTest::newRow("months") << "m" << QDateTime(QDate(2024, 1, 31), QTime())
                            << QDateTime(QDate(2024, 2, 1), QTime()) << qint64(1);
    QTest::newRow("years") << "yyyy" << QDateTime(QDate(2024, 12, 31), QTime())
                           << QDateTime(QDate(2025, 1, 1), QTime()) << qint64(1);
}

void tst_Conversions::dateArithmetic()
{
    QFETCH(QString, interval);
    QFETCH(QDateTime, from);
    QFETCH(QDateTime, to);
    QFETCH(qint64, difference);
    QCOMPARE(DateDiff(interval, from, to), difference);
    QCOMPARE(DateDiff(interval.toUpper(), to, from), -difference);
    if (interval == QLatin1String("d") || interval == QLatin1String("y")) {
        const QDateTime moved = DateAdd(interval, double(difference), from);
        QCOMPARE(moved.date(), to.date());
        QCOMPARE(moved.time(), from.time()); // adding days keeps the time of day
    }
}

void tst_Conversions::dateErrors()
{
    const QDateTime base(QDate(2024, 5, 10), QTime(0, 0));
    QCOMPARE(DateAdd(QStringLiteral("d"), -7, base).date(), QDate(2024, 5, 3));
    QCOMPARE(DateAdd(QStringLiteral("m"), 1, QDateTime(QDate(2024, 1, 31), QTime())).date(),
             QDate(2024, 2, 29));
    QCOMPARE(DateAdd(QStringLiteral("h"), -1, base), QDateTime(QDate(2024, 5, 9), QTime(23, 0)));
    QCOMPARE(errorOf([&] { DateAdd(QStringLiteral("x"), 1, base); }), int(InvalidProcedureCall));
    QCOMPARE(
        errorOf([] { DateAdd(QStringLiteral("d"), 1, QDateTime(QDate(9999, 12, 31), QTime())); }),
        int(InvalidProcedureCall));
    QCOMPARE(errorOf([&] { DateAdd(QStringLiteral("d"), 1e15, base); }), int(InvalidProcedureCall));
    QCOMPARE(errorOf([] { DateDiff(QStringLiteral("d"), QDateTime(), QDateTime()); }),
             int(TypeMismatch));
}

void tst_Conversions::serialDates()
{
    QCOMPARE(toSerialDate(QDateTime(QDate(1899, 12, 30), QTime())), 0.0);
    QCOMPARE(toSerialDate(QDateTime(QDate(1899, 12, 29), QTime(6, 0))), -1.25);
    QCOMPARE(fromSerialDate(-1.25), QDateTime(QDate(1899, 12, 29), QTime(6, 0)));
    const QDateTime moment(QDate(2024, 5, 10), QTime(13, 45, 30));
    QCOMPARE(fromSerialDate(toSerialDate(moment)), moment);
    QCOMPARE(errorOf([] { fromSerialDate(std::nan("")); }), int(Overflow));
}

void tst_Conversions::cdate()
{
    TestPlatform platform;
    const QDateTime moment(QDate(2024, 5, 10), QTime(0, 0));
    QCOMPARE(CDate(QStringLiteral("2024-05-10")), moment);
    QCOMPARE(CDate(QVariant(QDate(2024, 5, 10))), moment);
    QCOMPARE(CDate(QStringLiteral("5/10/2024")), moment);
    QVERIFY(IsDate(QStringLiteral("2024-05-10 13:00")));
    QVERIFY(!IsDate(QStringLiteral("All")));
    QCOMPARE(errorOf([] { CDate(QStringLiteral("All")); }), int(TypeMismatch));
    QCOMPARE(errorOf([] { CDate(nullVariant()); }), int(InvalidUseOfNull));
}

void tst_Conversions::numberPattern_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QLocale>("locale");
    QTest::addColumn<QString>("expected");
    const QString money = QStringLiteral("#,##0.00");
    QTest::newRow("grouping") << 1234.5 << money << english << "1,234.50";
    QTest::newRow("binary half rounds away") << 2.675 << money << english << "2.68";
    QTest::newRow("negative half") << -2.675 << money << english << "-2.68";
    QTest::newRow("exact half") << 0.125 << money << english << "0.13";
    QTest::newRow("carry into grouping") << 999.995 << money << english << "1,000.00";
    QTest::newRow("all nines carry") << 9.999 << "0.00" << english << "10.00";
    QTest::newRow("tiny negative is zero") << -0.001 << money << english << "0.00";
    QTest::newRow("zero") << 0.0 << money << english << "0.00";
    QTest::newRow("no decimals") << 1234567.5 << "#,##0" << english << "1,234,568";
    QTest::newRow("huge") << 1e20 << "#,##0" << english << "100,000,000,000,000,000,000";
    QTest::newRow("german") << -1234.5 << money << german << "-1.234,50";
    QTest::newRow("optional decimals") << 1.5 << "0.##" << english << "1.5";
    QTest::newRow("point kept") << 5.0 << "#.##" << english << "5.";
    QTest::newRow("min integer") << 7.0 << "000" << english << "007";
    QTest::newRow("literals") << 3.14159 << "$#,##0.00 net" << english << "$3.14 net";
    QTest::newRow("negative section") << -3.0 << "0.0;(0.0)" << english << "(3.0)";
    QTest::newRow("far below precision") << 1e-20 << money << english << "0.00";
    QTest::newRow("keep digit at place 0") << 0.5 << "0" << english << "1";
}

void tst_Conversions::numberPattern()
{
    QFETCH(double, value);
    QFETCH(QString, pattern);
    QFETCH(QLocale, locale);
    QFETCH(QString, expected);
    TestPlatform platform(QDate(2024, 5, 10), locale);
    QCOMPARE(Format(value, pattern), expected);
}

void tst_Conversions::trim()
{
    QCOMPARE(Trim(QStringLiteral("  a b  ")), QStringLiteral("a b"));
    QCOMPARE(Trim(QStringLiteral("\ta ")), QStringLiteral("\ta")); // only spaces are blanks here
    QCOMPARE(Trim(QStringLiteral("   ")), QString());
}

QTEST_GUILESS_MAIN(tst_Conversions)
#include "tst_conversions.moc"
