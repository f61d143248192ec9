#include <zelkon/common/error.h>
#include <zelkon/common/registry.h>
#include <zelkon/test/testplatform.h>
#include <zelkon/common/variants.h>
#include <zelkon/data/connection.h>
#include <zelkon/data/recordset.h>
#include <zelkon/data/recordsetaccess_p.h>

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>

#include <functional>
#include <memory>

using namespace zelkon;

namespace {

// The error number a step raised, 0 when it raised none.
template<typename Step>
int errorOf(Step &&step, QString *message = nullptr)
{
    try {
        step();
    } catch (const Error &e) {
        if (message)
            *message = e.message();
        return e.number();
    }
    return 0;
}

} // namespace

// A host's own recordset class: it answers by member name only, with argument types of its own
// and the fields reachable only through the Fields collection.
class HostRecordset : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool EOF READ eof)
    Q_PROPERTY(int AbsolutePosition READ position)
    Q_PROPERTY(bool NoMatch READ noMatch)
    Q_PROPERTY(QObject *Fields READ fields)
public:
    explicit HostRecordset(Recordset *inner)
        : m_inner(inner)
    { }
    Q_INVOKABLE void MoveFirst() { m_inner->MoveFirst(); }
    Q_INVOKABLE void MoveNext() { m_inner->MoveNext(); }
    Q_INVOKABLE void Find(QString c, int skip, int dir, int start)
    {
        m_inner->Find(c, skip, dir, start);
    }
    Q_INVOKABLE void FindFirst(QString c) { m_inner->FindFirst(c); }
    bool eof() const { return m_inner->atEOF(); }
    int position() const { return m_inner->absolutePosition(); }
    bool noMatch() const { return m_inner->noMatch(); }
    QObject *fields() const { return m_inner->fieldsObject(); }

private:
    Recordset *m_inner;
};

// Server cases skip on a developer's machine without a server, and fail in CI, where a skipped
// server test would hide that the server path was never run.
#define REQUIRE_BACKEND(var) \
    QFETCH(QString, backend); \
    const QString var = connectionFor(backend); \
    if (var.isEmpty()) { \
        if (qEnvironmentVariable("CI") == QLatin1String("true")) \
            QFAIL("ZELKON_TEST_PG is not set: run tests/data/postgres-server.sh and export it"); \
        QSKIP("ZELKON_TEST_PG is not set"); \
    }

// Every case runs on a SQLite file and, where the backend column says so, on the PostgreSQL
// server that ZELKON_TEST_PG names; both hold the same table of five people.
class tst_Recordset : public QObject
{
    Q_OBJECT

    TestPlatform m_platform;
    QTemporaryDir m_dir;
    QString m_sqlite;
    // One table per test process, so that two runs against one server do not meet.
    const QString m_table = u"zelkon_people_%1"_qs.arg(QCoreApplication::applicationPid());
    const QString m_peopleSql
        = u"SELECT id, name, born, score, note FROM %1 ORDER BY id"_qs.arg(m_table);
    const QStringList m_names = {u"Abc"_qs, u"abd"_qs, u"Xyz"_qs, u"Smith"_qs, u"smithers"_qs};

    void backends()
    {
        QTest::addColumn<QString>("backend");
        QTest::newRow("sqlite") << u"sqlite"_qs;
        QTest::newRow("postgres") << u"postgres"_qs;
    }
    // "sqlite", "postgres", or else a connection string of the case's own.
    QString connectionFor(const QString &backend) const
    {
        if (backend == QLatin1String("sqlite"))
            return m_sqlite;
        return backend == QLatin1String("postgres") ? qEnvironmentVariable("ZELKON_TEST_PG")
                                                    : backend;
    }
    void createPeople(const QString &connectionString, bool create)
    {
        Connection connection;
        connection.Open(connectionString);
        QSqlQuery q(connection.database());
        QStringList statements = {u"DROP TABLE IF EXISTS %1"_qs};
        if (create)
            statements
                << u"CREATE TABLE %1 (id INTEGER, name VARCHAR(40), born DATE,"
                   " score NUMERIC(6,2), note VARCHAR(40))"_qs
                << u"INSERT INTO %1 VALUES (1, 'Abc', '2024-01-05', 1.5, 'first'),"
                   " (2, 'abd', '2023-12-31', 2.25, NULL), (3, 'Xyz', '2024-02-01', -3, ''),"
                   " (4, 'Smith', '2024-01-05', 10, 'O''Brien'), (5, 'smithers', NULL, NULL, 'x')"_qs;
        for (const QString &s : statements)
            QVERIFY2(q.exec(s.arg(m_table)), qPrintable(s));
    }
    std::unique_ptr<Recordset> openPeople(const QString &connectionString) const
    {
        auto rs = std::make_unique<Recordset>();
        rs->Open(m_peopleSql, connectionString);
        return rs;
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        m_sqlite = u"Driver=QSQLITE;Database="_qs + m_dir.filePath(u"people.db"_qs) + u";"_qs;
        createPeople(m_sqlite, true);
        if (!qEnvironmentVariable("ZELKON_TEST_PG").isEmpty())
            createPeople(qEnvironmentVariable("ZELKON_TEST_PG"), true);
    }
    void cleanupTestCase()
    {
        if (!qEnvironmentVariable("ZELKON_TEST_PG").isEmpty())
            createPeople(qEnvironmentVariable("ZELKON_TEST_PG"), false);
    }

    void walk_data() { backends(); }
    // A host's road through a recordset: created and opened by name, walked, read, closed.
    void walk()
    {
        REQUIRE_BACKEND(cs);
        std::unique_ptr<QObject> connection(createObject(u"ADODB.Connection"_qs));
        std::unique_ptr<QObject> object(createObject(u"adodb.recordset"_qs));
        auto *rs = qobject_cast<Recordset *>(object.get());
        QVERIFY(rs && qobject_cast<Connection *>(connection.get()));
        QVERIFY(QMetaObject::invokeMethod(connection.get(), "Open", Q_ARG(QVariant, cs)));
        QVERIFY(QMetaObject::invokeMethod(rs, "Open", Q_ARG(QVariant, m_peopleSql),
                                          Q_ARG(QVariant, QVariant::fromValue(connection.get()))));
        QCOMPARE(rs->property("RecordCount").toInt(), 5);
        QCOMPARE(rs->property("Fields").value<QObject *>()->property("Count").toInt(), 5);
        QObject *name = nullptr;
        QVERIFY(QMetaObject::invokeMethod(rs, "Fields", Q_RETURN_ARG(QObject *, name),
                                          Q_ARG(QVariant, u"NAME"_qs)));
        QCOMPARE(name, rs->Fields(1)); // by name or by index: one object per column
        QCOMPARE(name->property("Name"), QVariant(u"name"_qs));

        QVERIFY(!rs->property("BOF").toBool());
        QStringList names;
        QList<int> positions;
        while (!rs->property("EOF").toBool()) {
            names << name->property("Value").toString();
            positions << rs->property("AbsolutePosition").toInt();
            QVERIFY(QMetaObject::invokeMethod(rs, "MoveNext"));
        }
        QCOMPARE(names, m_names);
        QCOMPARE(positions, QList<int>({1, 2, 3, 4, 5}));
        QCOMPARE(rs->absolutePosition(), -3);
        QCOMPARE(errorOf([&] { name->property("Value"); }), 3021);

        rs->MoveLast();
        QVERIFY(IsNull(rs->value(2)) && IsNull(rs->value(3)));
        rs->MoveFirst();
        QCOMPARE(rs->value(2).toDateTime(), QDateTime(QDate(2024, 1, 5), QTime(0, 0)));
        if (backend == QLatin1String("postgres")) // a server's date column arrives as a date-time
            QCOMPARE(rs->value(2).metaType(), QMetaType::fromType<QDateTime>());
        QCOMPARE(rs->value(3), QVariant(1.5));
        rs->MovePrevious();
        QVERIFY(rs->atBOF() && !rs->atEOF());
        QCOMPARE(rs->absolutePosition(), -2);
        rs->setAbsolutePosition(2);
        QVERIFY(IsNull(rs->value(4)));
        rs->setAbsolutePosition(3);
        QCOMPARE(rs->value(4), QVariant(QString())); // empty text is not Null
        QCOMPARE(errorOf([&] { rs->setAbsolutePosition(6); }), 3001);

        QVERIFY(QMetaObject::invokeMethod(rs, "Close"));
        QCOMPARE(errorOf([&] { rs->Close(); }), 3704);
        QCOMPARE(errorOf([&] { name->property("Value"); }), 3704);
        // Reopened on fewer columns, a kept field beyond them fails instead of dangling.
        rs->Open(QString(u"SELECT id FROM "_qs + m_table), cs);
        QCOMPARE(errorOf([&] { name->property("Value"); }), 3265);
    }

    void open_data()
    {
        QTest::addColumn<QString>("backend");
        QTest::addColumn<QString>("source"); // {t} stands for the people table
        QTest::addColumn<QVariant>("options");
        QTest::addColumn<int>("count");
        QTest::addColumn<int>("error");
        QTest::addColumn<QString>("fragment"); // part of the error's message
        auto row
            = [](const char *prefix, const char *backend, const char *tag, const char *source,
                 const QVariant &options, int count, int error = 0, const char *fragment = "") {
                  QTest::addRow("%s %s", prefix, tag)
                      << QString::fromLatin1(backend) << QString::fromLatin1(source) << options
                      << count << error << QString::fromLatin1(fragment);
              };
        const QVariant guess = missingVariant();
        for (const char *b : {"sqlite", "postgres"}) {
            row(b, b, "table guessed", "{t}", guess, 5);
            row(b, b, "table in other case", "{T}", 2, 5);
            row(b, b, "table direct", "{t}", 512, 5);
            row(b, b, "no rows", "SELECT * FROM {t} WHERE id < 0", guess, 0);
            row(b, b, "no such table", "SELECT * FROM nosuch_table", guess, 0, 3146,
                "nosuch_table");
            row(b, b, "no such table by name", "nosuch_table", 2, 0, 3146, "nosuch_table");
            row(b, b, "bad SQL", "SELEC name FROM {t}", guess, 0, 3146, "SELEC");
            row(b, b, "no records", "UPDATE {t} SET id = id WHERE id < 0", 1, 0, 3001,
                "no records");
        }
        const char *c = "connection";
        row(c, "Driver=QNOSUCH;Database=x;", "unknown driver", "{t}", guess, 0, 3706, "QNOSUCH");
        row(c, "Driver=QPSQL;Host=127.0.0.1;Port=1;Database=x;User=x;", "server refuses", "{t}",
            guess, 0, 3146, "refused");
        row(c, "Databse=x.db;", "misspelt key", "{t}", guess, 0, 3001, "Databse");
        row(c, "Driver=QPSQL;Port=abc;", "bad port", "{t}", guess, 0, 3001, "abc");
        row(c, "Database={x;y", "unclosed brace", "{t}", guess, 0, 3001, "{");
        row(c, "x.db", "no key", "{t}", guess, 0, 3001, "x.db");
    }
    void open()
    {
        REQUIRE_BACKEND(cs);
        QFETCH(QString, source);
        QFETCH(QVariant, options);
        QFETCH(int, count);
        QFETCH(int, error);
        QFETCH(QString, fragment);
        source.replace(u"{t}"_qs, m_table).replace(u"{T}"_qs, m_table.toUpper());
        const QStringList before = QSqlDatabase::connectionNames();
        Recordset rs;
        QString message;
        QCOMPARE(errorOf([&] { rs.Open(source, cs, 3, 3, options); }, &message), error);
        QVERIFY2(message.contains(fragment, Qt::CaseInsensitive), qPrintable(message));
        QCOMPARE(errorOf([&] { rs.MoveLast(); }), error ? 3704 : 0); // a failed Open: closed
        QCOMPARE(QSqlDatabase::connectionNames(), before);
        if (error)
            return;
        QCOMPARE(rs.recordCount(), count);
        QCOMPARE(rs.atBOF() && rs.atEOF(), count == 0); // an empty recordset stands at both ends
        rs.Find(u"name LIKE 'x%'"_qs, 0, 1, 1);
        QCOMPARE(rs.absolutePosition(), count ? 3 : -3);
    }

    void find_data()
    {
        QTest::addColumn<QString>("backend");
        QTest::addColumn<QString>("criterion");
        QTest::addColumn<int>("skip");
        QTest::addColumn<int>("direction");
        QTest::addColumn<QVariant>("start");
        QTest::addColumn<int>("from"); // AbsolutePosition before the search
        QTest::addColumn<int>("expected"); // after it; 0: refused, the position stays
        auto row = [](const char *tag, const char *criterion, int skip, int direction,
                      const QVariant &start, int from, int expected) {
            for (const char *b : {"sqlite", "postgres"}) {
                QTest::addRow("%s %s", b, tag)
                    << QString::fromLatin1(b) << QString::fromLatin1(criterion) << skip << direction
                    << start << from << expected;
            }
        };
        const QVariant current = missingVariant();
        row("= whole text, any case", "name = 'smith'", 0, 1, current, 1, 4);
        row("= [bracketed column]", "[name] = 'XYZ'", 0, 1, current, 1, 3);
        row("<> skips Null", "note <> 'x'", 0, 1, current, 2, 3);
        row(">", "id > 3", 0, 1, current, 1, 4);
        row("< from the first", "id < 2", 0, 1, 1, 3, 1);
        row("<= decimal column", "score <= -3", 0, 1, current, 1, 3);
        row("LIKE prefix %", "name LIKE 'SMI%'", 0, 1, current, 1, 4);
        row("LIKE prefix * skip 1", "name LIKE 'smi*'", 1, 1, current, 4, 5);
        row("LIKE contains", "name LIKE '%y%'", 0, 1, current, 1, 3);
        row("#date#", "born = #2024-01-05#", 0, 1, current, 2, 4);
        row("#M/d/yyyy# >", "born > #1/5/2024#", 0, 1, current, 1, 3);
        row("no match forward", "name = 'nobody'", 0, 1, 1, 3, -3);
        row("forward does not wrap", "name LIKE 'ab%'", 0, 1, current, 5, -3);
        row("backward from the last", "name LIKE 'ab%'", 0, -1, 2, 1, 2);
        row("backward skip 1", "id = 3", 1, -1, 2, 1, 3);
        row("no match backward", "name = 'smithers'", 0, -1, current, 3, -2);
        row("apostrophe inside the quotes", "note = 'O'Brien'", 0, 1, 1, 2, 0);
        row("unknown column", "nosuch = 1", 0, 1, 1, 2, 0);
    }
    // Each search runs once from C++ and once by name, as a host calls it.
    void find()
    {
        REQUIRE_BACKEND(cs);
        QFETCH(QString, criterion);
        QFETCH(int, skip);
        QFETCH(int, direction);
        QFETCH(QVariant, start);
        QFETCH(int, from);
        QFETCH(int, expected);
        auto rs = openPeople(cs);
        for (const bool byName : {false, true}) {
            rs->setAbsolutePosition(from);
            bool invoked = true;
            QString message;
            const int number = errorOf(
                [&] {
                    if (!byName)
                        rs->Find(criterion, skip, direction, start);
                    else
                        invoked = QMetaObject::invokeMethod(
                            rs.get(), "Find", Q_ARG(QString, criterion), Q_ARG(qint32, skip),
                            Q_ARG(qint32, direction), Q_ARG(QVariant, start));
                },
                &message);
            QVERIFY(invoked);
            QCOMPARE(number, expected ? 0 : 3001);
            QVERIFY2(!number || message.contains(criterion), qPrintable(message));
            QCOMPARE(rs->absolutePosition(), expected ? expected : from);
            QCOMPARE(rs->atEOF(), expected == -3);
            QCOMPARE(rs->atBOF(), expected == -2);
        }
    }

    void severalConnections()
    {
        const QStringList before = QSqlDatabase::connectionNames();
        auto a = std::make_unique<Connection>();
        auto b = std::make_unique<Connection>();
        a->Open(QString(u"Database="_qs + m_dir.filePath(u"a.db"_qs))); // SQLite when no driver
        b->setConnectionString(u"Driver=QSQLITE; Database = {"_qs + m_dir.filePath(u"b;.db"_qs)
                               + u"};"_qs);
        b->Open();
        QVERIFY(QSqlQuery(a->database()).exec(u"CREATE TABLE t AS SELECT 'from a' AS v"_qs));
        QVERIFY(QSqlQuery(b->database()).exec(u"CREATE TABLE t AS SELECT 'from b' AS v"_qs));
        QVERIFY(QFile::exists(m_dir.filePath(u"b;.db"_qs)));

        Recordset ra, rb;
        ra.Open(u"t"_qs, QVariant::fromValue<QObject *>(a.get()));
        rb.Open(u"t"_qs, QVariant::fromValue<QObject *>(b.get()));
        QCOMPARE(ra.value(0), QVariant(u"from a"_qs));
        QCOMPARE(rb.value(0), QVariant(u"from b"_qs));

        a->Close();
        Recordset again;
        QCOMPARE(errorOf([&] { again.Open(u"t"_qs, QVariant::fromValue<QObject *>(a.get())); }),
                 3709);
        QCOMPARE(ra.value(0), QVariant(u"from a"_qs)); // the rows stay after their connection
        b.reset(); // destroyed while open
        QCOMPARE(QSqlDatabase::connectionNames(), before);
    }

    // Every member of a closed recordset, of an object that is no recordset, and of none at all.
    void membersFail_data()
    {
        QTest::addColumn<QString>("target");
        QTest::addColumn<int>("number");
        QTest::newRow("closed recordset") << u"closed"_qs << 3704;
        QTest::newRow("plain object") << u"plain"_qs << 438;
        QTest::newRow("null") << u"null"_qs << 91;
    }
    void membersFail()
    {
        QFETCH(QString, target);
        QFETCH(int, number);
        QObject plain;
        Recordset closed;
        RecordsetAccess a(target == QLatin1String("closed")
                              ? &closed
                              : (target == QLatin1String("plain") ? &plain : nullptr));
        const QList<std::pair<const char *, std::function<void()>>> calls = {
            {"moveFirst", [&] { a.moveFirst(); }},
            {"moveLast", [&] { a.moveLast(); }},
            {"moveNext", [&] { a.moveNext(); }},
            {"atEOF", [&] { a.atEOF(); }},
            {"fieldCount", [&] { a.fieldCount(); }},
            {"fieldValue", [&] { a.fieldValue(0); }},
            {"fieldName", [&] { a.fieldName(0); }},
            {"find", [&] { a.find(u"id = 1"_qs, 0, 1, 1); }},
            {"absolutePosition", [&] { a.absolutePosition(); }},
            {"findFirst", [&] { a.findFirst(u"id = 1"_qs); }},
        };
        for (const auto &[member, call] : calls)
            QVERIFY2(errorOf(call) == number, member);
    }

    void access_data()
    {
        QTest::addColumn<bool>("host");
        QTest::newRow("zelkon::Recordset") << false;
        QTest::newRow("host's own recordset") << true;
    }
    void access()
    {
        QFETCH(bool, host);
        Recordset rs;
        HostRecordset hostRs(&rs);
        RecordsetAccess a(host ? static_cast<QObject *>(&hostRs) : &rs);
        if (host)
            rs.Open(m_peopleSql, m_sqlite);
        else
            a.open(m_peopleSql, m_sqlite, 3, 3, 1);

        QCOMPARE(a.fieldCount(), 5);
        QCOMPARE(a.fieldName(1), u"name"_qs);
        QStringList names;
        for (a.moveFirst(); !a.atEOF(); a.moveNext())
            names << a.fieldValue(1).toString();
        QCOMPARE(names, m_names);

        a.find(u"name LIKE 'SM%'"_qs, 0, 1, 1);
        QCOMPARE(a.absolutePosition(), 4);
        a.findFirst(u"note = 'X'"_qs);
        QVERIFY(!a.noMatch());
        QCOMPARE(a.fieldValue(0).toInt(), 5);
        a.findFirst(u"note = 'y'"_qs); // no match: NoMatch is set and the record stays
        QVERIFY(a.noMatch());
        QCOMPARE(a.absolutePosition(), 5);
        a.findFirst(u"name LIKE 'ab%'"_qs); // the first of two, and NoMatch cleared again
        QVERIFY(!a.noMatch());
        QCOMPARE(a.absolutePosition(), 1);
        a.find(u"name = 'nobody'"_qs, 0, 1, 1);
        QCOMPARE(a.absolutePosition(), -3);
        QCOMPARE(errorOf([&] { a.fieldValue(0); }), 3021); // the recordset's own error, unchanged
        QCOMPARE(errorOf([&] { a.findFirst(u"note = 'O'Brien'"_qs); }), 3001);
    }
};

QTEST_GUILESS_MAIN(tst_Recordset)
#include "tst_recordset.moc"
