#include <zelkon/common/error.h>
#include <zelkon/test/testplatform.h>
#include <zelkon/common/variants.h>
#include <zelkon/data/criterion_p.h>

#include <QTest>

using namespace zelkon;

// Criteria as a host writes them for Find, read and matched against single values.
class tst_Criterion : public QObject
{
    Q_OBJECT
    TestPlatform m_platform;

public:
    enum Expected { NoMatch, Match, Refused }; // Refused: the criterion raises error 3001
    Q_ENUM(Expected)

private Q_SLOTS:
    void matches_data()
    {
        QTest::addColumn<QString>("criterion");
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<Expected>("expected");

        QTest::newRow("= blanks count") << "name = 'abc'" << QVariant(u"abc "_qs) << NoMatch;
        QTest::newRow("<> text") << "name <> 'abc'" << QVariant(u"abd"_qs) << Match;
        QTest::newRow("< text ignores case") << "name < 'b'" << QVariant(u"A"_qs) << Match;
        QTest::newRow("< number, 64-bit") << "n < 10" << QVariant(qlonglong(10)) << NoMatch;
        QTest::newRow("< number over text digits") << "n < 10" << QVariant(u"9"_qs) << Match;
        QTest::newRow(">= fraction") << "n >= 2.5" << QVariant(2.5) << Match;
        QTest::newRow("<= exponent, no blanks") << "n<=-1e2" << QVariant(-100) << Match;
        QTest::newRow("quoted digits vs number") << "code = '017'" << QVariant(17) << Match;
        QTest::newRow("LIKE prefix elsewhere")
            << "name LIKE 'ab%'" << QVariant(u"xab"_qs) << NoMatch;
        QTest::newRow("LIKE contains *") << "name LIKE '*bc*'" << QVariant(u"xABCx"_qs) << Match;
        QTest::newRow("LIKE whole") << "name LIKE 'abc'" << QVariant(u"ABC"_qs) << Match;
        QTest::newRow("LIKE whole longer") << "name LIKE 'abc'" << QVariant(u"abcd"_qs) << NoMatch;
        QTest::newRow("LIKE % Null") << "name LIKE '%'" << nullVariant() << NoMatch;
        QTest::newRow("LIKE over a number") << "n LIKE '1%'" << QVariant(12) << Match;
        QTest::newRow("LIKE Cyrillic case")
            << u"name LIKE 'ив%'"_qs << QVariant(u"Иванов"_qs) << Match;
        QTest::newRow("#iso# = date") << "d = #2024-01-05#" << QVariant(QDate(2024, 1, 5)) << Match;
        QTest::newRow("#iso# = date text")
            << "d = #2024-01-05#" << QVariant(u"2024-01-05"_qs) << Match;
        QTest::newRow("#date# time counts")
            << "d = #2024-01-05#" << QVariant(QDateTime(QDate(2024, 1, 5), QTime(0, 1))) << NoMatch;
        QTest::newRow("#text#") << "state = #WA#" << QVariant(u"wa"_qs) << Match;
        QTest::newRow("unclosed quote") << "name = 'abc" << QVariant() << Refused;
        QTest::newRow("no operator") << "name 'abc'" << QVariant() << Refused;
        QTest::newRow("no value") << "name =" << QVariant() << Refused;
        QTest::newRow("bare word") << "name = abc" << QVariant() << Refused;
        QTest::newRow("two conditions") << "name = 'a' AND n = 1" << QVariant() << Refused;
        QTest::newRow("LIKE suffix") << "name LIKE '%ab'" << QVariant() << Refused;
        QTest::newRow("LIKE inner wildcard") << "name LIKE 'a%b'" << QVariant() << Refused;
        QTest::newRow("LIKE number") << "name LIKE 12" << QVariant() << Refused;
        QTest::newRow("unclosed bracket") << "[name = 'a'" << QVariant() << Refused;
        QTest::newRow("empty") << "" << QVariant() << Refused;
    }

    void matches()
    {
        QFETCH(QString, criterion);
        QFETCH(QVariant, value);
        QFETCH(Expected, expected);
        try {
            const bool matched = Criterion(criterion).matches(value);
            QVERIFY2(expected != Refused, "the criterion was accepted");
            QCOMPARE(matched, expected == Match);
        } catch (const Error &e) {
            QCOMPARE(expected, Refused);
            QCOMPARE(e.number(), 3001);
            QVERIFY(e.message().contains(criterion));
        }
    }
};

QTEST_GUILESS_MAIN(tst_Criterion)
#include "tst_criterion.moc"
