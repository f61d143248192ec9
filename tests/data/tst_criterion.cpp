#include "support/errorof.h"

#include <zelkon/data/connection.h>
#include <zelkon/data/recordset.h>
#include <zelkon/test/testplatform.h>

#include <QTest>

using namespace zelkon;

// Criteria as a host writes them for Find and FindFirst. Each is searched in two records that
// SQLite returns: a Null, which nothing matches, then the value of an SQL expression, with the
// type that the database gives it.
class tst_Criterion : public QObject
{
    Q_OBJECT
    TestPlatform m_platform;
    Connection m_db;

public:
    enum Expected { NoMatch, Match, Refused }; // Refused: error 3001, the record stays
    Q_ENUM(Expected)

private Q_SLOTS:
    void initTestCase() { m_db.Open(u"Database=:memory:"_qs); }

    void matches_data()
    {
        QTest::addColumn<QString>("criterion");
        QTest::addColumn<QString>("value"); // SQL
        QTest::addColumn<Expected>("expected");

        auto row = [](const char *tag, const char16_t *criterion, const char16_t *value,
                      Expected expected) {
            QTest::newRow(tag) << QString::fromUtf16(criterion) << QString::fromUtf16(value)
                               << expected;
        };
        row("= blanks count", u"v = 'abc'", u"'abc '", NoMatch);
        row("= any case, column too", u"V = 'ABC'", u"'abc'", Match);
        row("[bracketed column]", u"[v] = 'x'", u"'x'", Match);
        row("<> text, Null skipped", u"v <> 'abc'", u"'abd'", Match);
        row("< text ignores case", u"v < 'b'", u"'A'", Match);
        row("< number, 64-bit", u"v < 10", u"10", NoMatch);
        row("< number over text digits", u"v < 10", u"'9'", Match);
        row(">= fraction", u"v >= 2.5", u"2.5", Match);
        row("> fraction", u"v > 2.5", u"2.5", NoMatch);
        row("<= exponent, no blanks", u"v<=-1e2", u"-100", Match);
        row("quoted digits vs number", u"v = '017'", u"17", Match);
        row("LIKE prefix elsewhere", u"v LIKE 'ab%'", u"'xab'", NoMatch);
        row("LIKE prefix *", u"v like 'AB*'", u"'abc'", Match);
        row("LIKE contains *", u"v LIKE '*bc*'", u"'xABCx'", Match);
        row("LIKE whole", u"v LIKE 'abc'", u"'ABC'", Match);
        row("LIKE whole longer", u"v LIKE 'abc'", u"'abcd'", NoMatch);
        row("LIKE % Null", u"v LIKE '%'", u"NULL", NoMatch);
        row("LIKE over a number", u"v LIKE '1%'", u"12", Match);
        row("LIKE Cyrillic case", u"v LIKE 'ив%'", u"'Иванов'", Match);
        row("#iso# = date text", u"v = #2024-01-05#", u"'2024-01-05'", Match);
        row("#M/d/yyyy# < date text", u"v < #1/6/2024#", u"'2024-01-05'", Match);
        row("#date# time counts", u"v = #2024-01-05#", u"'2024-01-05 00:01'", NoMatch);
        row("#text#", u"v = #WA#", u"'wa'", Match);
        row("unclosed quote", u"v = 'abc", u"1", Refused);
        row("apostrophe inside", u"v = 'O'Brien'", u"'O''Brien'", Refused);
        row("no operator", u"v 'abc'", u"1", Refused);
        row("no value", u"v =", u"1", Refused);
        row("bare word", u"v = abc", u"1", Refused);
        row("two conditions", u"v = 'a' AND v = 1", u"1", Refused);
        row("LIKE suffix", u"v LIKE '%ab'", u"1", Refused);
        row("LIKE inner wildcard", u"v LIKE 'a%b'", u"1", Refused);
        row("LIKE number", u"v LIKE 12", u"1", Refused);
        row("unclosed bracket", u"[v = 'a'", u"1", Refused);
        row("unknown column", u"w = 1", u"1", Refused);
        row("empty", u"", u"1", Refused);
    }
    // Find from C++ (from the first record, forward), then FindFirst by name, as a host calls it.
    void matches()
    {
        QFETCH(QString, criterion);
        QFETCH(QString, value);
        QFETCH(Expected, expected);
        Recordset rs;
        rs.Open(QString(u"SELECT NULL AS v UNION ALL SELECT "_qs + value),
                QVariant::fromValue<QObject *>(&m_db));
        const int error = expected == Refused ? 3001 : 0;
        QString message;
        QCOMPARE(errorOf([&] { rs.Find(criterion, 0, 1, 1); }, &message), error);
        QVERIFY2(!error || message.contains(criterion), qPrintable(message));
        QCOMPARE(rs.absolutePosition(), expected == Match ? 2 : (error ? 1 : -3)); // EOF: none

        rs.MoveFirst();
        bool invoked = false;
        QCOMPARE(errorOf([&] {
                     invoked
                         = QMetaObject::invokeMethod(&rs, "FindFirst", Q_ARG(QString, criterion));
                 }),
                 error);
        QVERIFY(invoked || error);
        QCOMPARE(rs.absolutePosition(), expected == Match ? 2 : 1); // no match: it stays
        if (!error)
            QCOMPARE(rs.property("NoMatch").toBool(), expected == NoMatch);
    }
};

QTEST_GUILESS_MAIN(tst_Criterion)
#include "tst_criterion.moc"
