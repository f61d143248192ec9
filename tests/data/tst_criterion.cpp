#include <zelkon/common/error.h>
#include <zelkon/common/testplatform.h>
#include <zelkon/common/variants.h>
#include <zelkon/data/criterion.h>

#include <QTest>

using namespace zelkon;

class tst_Criterion : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void matches_data();
    void matches();
    void refused_data();
    void refused();
    void columnName_data();
    void columnName();

private:
    TestPlatform m_platform;
};

void tst_Criterion::matches_data()
{
    QTest::addColumn<QString>("criterion");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<bool>("expected");

    const QDateTime jan5(QDate(2024, 1, 5), QTime(0, 0));
    QTest::newRow("= text ignores case") << "name = 'abc'" << QVariant(u"ABC"_qs) << true;
    QTest::newRow("= text differs") << "name = 'abc'" << QVariant(u"abd"_qs) << false;
    QTest::newRow("= blanks count") << "name = 'abc'" << QVariant(u"abc "_qs) << false;
    QTest::newRow("<> text") << "name <> 'abc'" << QVariant(u"abd"_qs) << true;
    QTest::newRow("<> Null") << "name <> 'abc'" << nullVariant() << false;
    QTest::newRow("= Null") << "name = 'abc'" << nullVariant() << false;
    QTest::newRow("< text ignores case") << "name < 'b'" << QVariant(u"A"_qs) << true;
    QTest::newRow("> text") << "name > 'b'" << QVariant(u"a"_qs) << false;
    QTest::newRow("< number") << "n < 10" << QVariant(9) << true;
    QTest::newRow("< number, 64-bit") << "n < 10" << QVariant(qlonglong(10)) << false;
    QTest::newRow("< number over text digits") << "n < 10" << QVariant(u"9"_qs) << true;
    QTest::newRow(">= fraction") << "n >= 2.5" << QVariant(2.5) << true;
    QTest::newRow("<= exponent") << "n <= -1e2" << QVariant(-100) << true;
    QTest::newRow("> no blanks") << "n>3" << QVariant(4) << true;
    QTest::newRow("quoted digits vs number") << "code = '017'" << QVariant(17) << true;
    QTest::newRow("LIKE prefix %") << "name LIKE 'ab%'" << QVariant(u"Abc"_qs) << true;
    QTest::newRow("LIKE prefix *") << "name like 'ab*'" << QVariant(u"aBx"_qs) << true;
    QTest::newRow("LIKE prefix elsewhere") << "name LIKE 'ab%'" << QVariant(u"xab"_qs) << false;
    QTest::newRow("LIKE contains") << "name LIKE '%b%'" << QVariant(u"ABC"_qs) << true;
    QTest::newRow("LIKE contains *") << "name LIKE '*yz*'" << QVariant(u"ABC"_qs) << false;
    QTest::newRow("LIKE whole") << "name LIKE 'abc'" << QVariant(u"ABC"_qs) << true;
    QTest::newRow("LIKE whole longer") << "name LIKE 'abc'" << QVariant(u"abcd"_qs) << false;
    QTest::newRow("LIKE % empty text") << "name LIKE '%'" << QVariant(QString()) << true;
    QTest::newRow("LIKE % Null") << "name LIKE '%'" << nullVariant() << false;
    QTest::newRow("LIKE over a number") << "n LIKE '1%'" << QVariant(12) << true;
    QTest::newRow("LIKE Cyrillic case") << u"name LIKE 'ив%'"_qs << QVariant(u"Иванов"_qs) << true;
    QTest::newRow("#iso# = date-time") << "d = #2024-01-05#" << QVariant(jan5) << true;
    QTest::newRow("#iso# = date") << "d = #2024-01-05#" << QVariant(QDate(2024, 1, 5)) << true;
    QTest::newRow("#iso# = date text") << "d = #2024-01-05#" << QVariant(u"2024-01-05"_qs) << true;
    QTest::newRow("#M/d/yyyy# <") << "d < #1/6/2024#" << QVariant(jan5) << true;
    QTest::newRow("#date# time counts")
        << "d = #2024-01-05#" << QVariant(jan5.addSecs(60)) << false;
    QTest::newRow("#text#") << "state = #WA#" << QVariant(u"wa"_qs) << true;
}

void tst_Criterion::matches()
{
    QFETCH(QString, criterion);
    QFETCH(QVariant, value);
    QFETCH(bool, expected);
    QCOMPARE(Criterion(criterion).matches(value), expected);
}

void tst_Criterion::refused_data()
{
    QTest::addColumn<QString>("criterion");
    QTest::newRow("apostrophe inside") << "name = 'O'Brien'";
    QTest::newRow("unclosed quote") << "name = 'abc";
    QTest::newRow("no operator") << "name 'abc'";
    QTest::newRow("no column") << "= 'abc'";
    QTest::newRow("no value") << "name =";
    QTest::newRow("unknown operator") << "name ~ 'a'";
    QTest::newRow("bare word") << "name = abc";
    QTest::newRow("two conditions") << "name = 'a' AND n = 1";
    QTest::newRow("LIKE suffix") << "name LIKE '%ab'";
    QTest::newRow("LIKE inner wildcard") << "name LIKE 'a%b'";
    QTest::newRow("LIKE number") << "name LIKE 12";
    QTest::newRow("unclosed bracket") << "[name = 'a'";
    QTest::newRow("empty") << "";
}

void tst_Criterion::refused()
{
    QFETCH(QString, criterion);
    try {
        Criterion c(criterion);
        QFAIL("the criterion was accepted");
    } catch (const Error &e) {
        QCOMPARE(e.number(), 3001);
        QVERIFY(e.message().contains(criterion));
    }
}

void tst_Criterion::columnName_data()
{
    QTest::addColumn<QString>("criterion");
    QTest::addColumn<QString>("column");
    QTest::newRow("plain") << "  Name LIKE 'x%'"
                           << "Name";
    QTest::newRow("bracketed with blanks") << "[full name] = 'x'"
                                           << "full name";
    QTest::newRow("underscore and digits") << "col_2>=1"
                                           << "col_2";
}

void tst_Criterion::columnName()
{
    QFETCH(QString, criterion);
    QFETCH(QString, column);
    QCOMPARE(Criterion(criterion).columnName(), column);
}

QTEST_GUILESS_MAIN(tst_Criterion)
#include "tst_criterion.moc"
