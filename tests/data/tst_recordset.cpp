#include <zelkon/common/error.h>
#include <zelkon/common/registry.h>
#include <zelkon/common/testplatform.h>
#include <zelkon/common/variants.h>
#include <zelkon/data/connection.h>
#include <zelkon/data/field.h>
#include <zelkon/data/fields.h>
#include <zelkon/data/recordset.h>
#include <zelkon/data/recordsetaccess.h>

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>

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

const QString peopleSql
    = QStringLiteral("SELECT id, name, born, score, note FROM zelkon_people ORDER BY id");

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
    Q_INVOKABLE void Find(QString criteria, int skip, int direction, int start)
    {
        m_inner->Find(criteria, skip, direction, start);
    }
    Q_INVOKABLE void FindFirst(QString criteria) { m_inner->FindFirst(criteria); }
    bool eof() const { return m_inner->atEOF(); }
    int position() const { return m_inner->absolutePosition(); }
    bool noMatch() const { return m_inner->noMatch(); }
    QObject *fields() const { return m_inner->fieldsObject(); }

private:
    Recordset *m_inner;
};

class tst_Recordset : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void walk_data() { backends(); }
    void walk();
    void emptyResult_data() { backends(); }
    void emptyResult();
    void tableSource_data();
    void tableSource();
    void find_data();
    void find();
    void badCriterion_data();
    void badCriterion();
    void findFirst_data();
    void findFirst();
    void databaseErrors_data();
    void databaseErrors();
    void connectionErrors_data();
    void connectionErrors();
    void severalConnections();
    void closedMembers_data();
    void closedMembers();
    void byName_data() { backends(); }
    void byName();
    void accessMembersFail_data();
    void accessMembersFail();
    void access_data();
    void access();

private:
    void backends();
    QString connectionFor(const QString &backend) const;
    void createPeople(const QString &connectionString);
    std::unique_ptr<Recordset> openPeople(const QString &connectionString, Connection *connection);

    TestPlatform m_platform;
    QTemporaryDir m_dir;
    QString m_sqlite;
    std::unique_ptr<Connection> m_connection; // kept open for the cases that pass an object
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

void tst_Recordset::backends()
{
    QTest::addColumn<QString>("backend");
    QTest::newRow("sqlite") << u"sqlite"_qs;
    QTest::newRow("postgres") << u"postgres"_qs;
}

QString tst_Recordset::connectionFor(const QString &backend) const
{
    return backend == QLatin1String("sqlite") ? m_sqlite : qEnvironmentVariable("ZELKON_TEST_PG");
}

void tst_Recordset::createPeople(const QString &connectionString)
{
    Connection connection;
    connection.Open(connectionString);
    QSqlQuery q(connection.database());
    if (connection.database().tables().contains(u"zelkon_people"_qs))
        QVERIFY(q.exec(u"DROP TABLE zelkon_people"_qs));
    const QStringList statements = {
        u"CREATE TABLE zelkon_people (id INTEGER, name VARCHAR(40), born DATE, score NUMERIC(6,2),"
        " note VARCHAR(40))"_qs,
        u"INSERT INTO zelkon_people VALUES (1, 'Abc', '2024-01-05', 1.5, 'first')"_qs,
        u"INSERT INTO zelkon_people VALUES (2, 'abd', '2023-12-31', 2.25, NULL)"_qs,
        u"INSERT INTO zelkon_people VALUES (3, 'Xyz', '2024-02-01', -3, '')"_qs,
        u"INSERT INTO zelkon_people VALUES (4, 'Smith', '2024-01-05', 10, 'O''Brien')"_qs,
        u"INSERT INTO zelkon_people VALUES (5, 'smithers', NULL, NULL, 'x')"_qs,
    };
    for (const QString &s : statements)
        QVERIFY2(q.exec(s), qPrintable(s));
}

void tst_Recordset::initTestCase()
{
    QVERIFY(m_dir.isValid());
    m_sqlite = u"Driver=QSQLITE;Database="_qs + m_dir.filePath(u"people.db"_qs) + u";"_qs;
    try {
        createPeople(m_sqlite);
        if (!qEnvironmentVariable("ZELKON_TEST_PG").isEmpty())
            createPeople(qEnvironmentVariable("ZELKON_TEST_PG"));
    } catch (const Error &e) {
        QFAIL(qPrintable(e.message()));
    }
}

std::unique_ptr<Recordset> tst_Recordset::openPeople(const QString &connectionString,
                                                     Connection *connection)
{
    connection->Open(connectionString);
    auto rs = std::make_unique<Recordset>();
    rs->Open(peopleSql, QVariant::fromValue<QObject *>(connection), 3, 3, 1);
    return rs;
}

void tst_Recordset::walk()
{
    REQUIRE_BACKEND(cs);
    Connection connection;
    auto rs = openPeople(cs, &connection);

    QCOMPARE(rs->recordCount(), 5);
    QCOMPARE(rs->fieldCount(), 5);
    QCOMPARE(rs->fieldName(4), u"note"_qs);
    QVERIFY(!rs->atBOF());
    QStringList names;
    QList<qint32> positions;
    while (!rs->atEOF()) {
        names << rs->value(1).toString();
        positions << rs->absolutePosition();
        rs->MoveNext();
    }
    QCOMPARE(names, QStringList({u"Abc"_qs, u"abd"_qs, u"Xyz"_qs, u"Smith"_qs, u"smithers"_qs}));
    QCOMPARE(positions, QList<qint32>({1, 2, 3, 4, 5}));
    QCOMPARE(rs->absolutePosition(), -3);
    QCOMPARE(errorOf([&] { rs->MoveNext(); }), 3021);
    QCOMPARE(errorOf([&] { rs->value(0); }), 3021);

    rs->MovePrevious();
    QCOMPARE(rs->absolutePosition(), 5);
    QVERIFY(IsNull(rs->value(2)));
    QVERIFY(IsNull(rs->value(3)));
    rs->MoveFirst();
    QCOMPARE(rs->value(2).toDateTime().date(), QDate(2024, 1, 5));
    QCOMPARE(rs->value(3).metaType(), QMetaType::fromType<double>());
    QCOMPARE(rs->value(3).toDouble(), 1.5);
    rs->MovePrevious();
    QVERIFY(rs->atBOF());
    QCOMPARE(rs->absolutePosition(), -2);
    QCOMPARE(errorOf([&] { rs->MovePrevious(); }), 3021);

    rs->setAbsolutePosition(2);
    QVERIFY(IsNull(rs->value(4)));
    rs->setAbsolutePosition(3);
    QCOMPARE(rs->value(4), QVariant(QString())); // empty text is not Null
    QVERIFY(!IsNull(rs->value(4)));
    QCOMPARE(errorOf([&] { rs->setAbsolutePosition(6); }), 3001);
    if (backend == QLatin1String("postgres")) // a server's date column arrives as a date-time
        QCOMPARE(rs->value(2).metaType(), QMetaType::fromType<QDateTime>());
}

void tst_Recordset::emptyResult()
{
    REQUIRE_BACKEND(cs);
    Recordset rs;
    rs.Open(u"SELECT * FROM zelkon_people WHERE id < 0"_qs, cs);
    QCOMPARE(rs.recordCount(), 0);
    QCOMPARE(rs.fieldCount(), 5);
    QVERIFY(rs.atBOF() && rs.atEOF());
    rs.MoveLast();
    rs.MoveFirst();
    QVERIFY(rs.atEOF());
    rs.Find(u"name LIKE 'a%'"_qs, 0, 1, 1);
    QCOMPARE(rs.absolutePosition(), -3);
    rs.FindFirst(u"name = 'a'"_qs);
    QVERIFY(rs.noMatch());
}

void tst_Recordset::tableSource_data()
{
    QTest::addColumn<QString>("backend");
    QTest::addColumn<QString>("source");
    QTest::addColumn<QVariant>("options");
    for (const char *b : {"sqlite", "postgres"}) {
        const QString backend = QString::fromLatin1(b);
        QTest::addRow("%s guessed", b) << backend << u"zelkon_people"_qs << missingVariant();
        QTest::addRow("%s other case", b) << backend << u"Zelkon_People"_qs << QVariant(2);
        QTest::addRow("%s direct", b) << backend << u"zelkon_people"_qs << QVariant(512);
    }
}

void tst_Recordset::tableSource()
{
    REQUIRE_BACKEND(cs);
    QFETCH(QString, source);
    QFETCH(QVariant, options);
    Recordset rs;
    rs.Open(source, cs, 3, 3, options);
    QCOMPARE(rs.recordCount(), 5);
    QCOMPARE(rs.fieldName(1), u"name"_qs);
    QCOMPARE(rs.fieldIndex(u"NOTE"_qs), 4);
}

void tst_Recordset::find_data()
{
    QTest::addColumn<QString>("backend");
    QTest::addColumn<QString>("criterion");
    QTest::addColumn<int>("skip");
    QTest::addColumn<int>("direction");
    QTest::addColumn<QVariant>("start");
    QTest::addColumn<int>("from"); // AbsolutePosition before the search
    QTest::addColumn<int>("expected"); // AbsolutePosition after it

    const QVariant current = missingVariant();
    struct Row
    {
        const char *tag;
        const char *criterion;
        int skip, direction;
        QVariant start;
        int from, expected;
    };
    const QList<Row> rows = {
        {"= ignores case", "name = 'ABC'", 0, 1, current, 1, 1},
        {"= later row", "name = 'smith'", 0, 1, current, 1, 4},
        {"<>", "name <> 'Abc'", 0, 1, current, 1, 2},
        {"<> skips Null", "note <> 'x'", 0, 1, current, 2, 3},
        {"= empty text", "note = ''", 0, 1, current, 1, 3},
        {">", "id > 3", 0, 1, current, 1, 4},
        {">=", "id >= 3", 0, 1, current, 1, 3},
        {"< from the first", "id < 2", 0, 1, QVariant(1), 3, 1},
        {"<= decimal column", "score <= -3", 0, 1, current, 1, 3},
        {"LIKE prefix", "name LIKE 'SMI%'", 0, 1, current, 1, 4},
        {"LIKE prefix skip 1", "name LIKE 'smi*'", 1, 1, current, 4, 5},
        {"LIKE contains", "name LIKE '%y%'", 0, 1, current, 1, 3},
        {"#date#", "born = #2024-01-05#", 0, 1, current, 1, 1},
        {"#date# skip 1", "born = #2024-01-05#", 1, 1, current, 1, 4},
        {"#M/d/yyyy# >", "born > #1/5/2024#", 0, 1, current, 1, 3},
        {"no match forward", "name = 'nobody'", 0, 1, QVariant(1), 3, -3},
        {"forward does not wrap", "name LIKE 'ab%'", 0, 1, current, 5, -3},
        {"backward from the last", "name LIKE 'ab%'", 0, -1, QVariant(2), 1, 2},
        {"backward skip 1", "id = 3", 1, -1, QVariant(2), 1, 3},
        {"no match backward", "name = 'smithers'", 0, -1, current, 3, -2},
    };
    for (const char *b : {"sqlite", "postgres"}) {
        for (const Row &r : rows) {
            QTest::addRow("%s %s", b, r.tag)
                << QString::fromLatin1(b) << QString::fromLatin1(r.criterion) << r.skip
                << r.direction << r.start << r.from << r.expected;
        }
    }
}

void tst_Recordset::find()
{
    REQUIRE_BACKEND(cs);
    QFETCH(QString, criterion);
    QFETCH(int, skip);
    QFETCH(int, direction);
    QFETCH(QVariant, start);
    QFETCH(int, from);
    QFETCH(int, expected);
    Connection connection;
    auto rs = openPeople(cs, &connection);
    rs->setAbsolutePosition(from);
    rs->Find(criterion, skip, direction, start);
    QCOMPARE(rs->absolutePosition(), expected);
    QCOMPARE(rs->atEOF(), expected == -3);
    QCOMPARE(rs->atBOF(), expected == -2);
    QCOMPARE(rs->noMatch(), expected < 0);
}

void tst_Recordset::badCriterion_data()
{
    QTest::addColumn<QString>("criterion");
    QTest::newRow("apostrophe in the text") << u"name = 'O'Brien'"_qs;
    QTest::newRow("unknown column") << u"nosuch = 1"_qs;
    QTest::newRow("LIKE suffix") << u"name LIKE '%th'"_qs;
}

void tst_Recordset::badCriterion()
{
    QFETCH(QString, criterion);
    Connection connection;
    auto rs = openPeople(m_sqlite, &connection);
    rs->setAbsolutePosition(2);
    QString message;
    QCOMPARE(errorOf([&] { rs->Find(criterion, 0, 1, 1); }, &message), 3001);
    QVERIFY2(message.contains(criterion), qPrintable(message));
    QCOMPARE(rs->absolutePosition(), 2);
    // By name the error reaches the caller just the same.
    QCOMPARE(errorOf([&] {
                 QMetaObject::invokeMethod(rs.get(), "Find", Q_ARG(QString, criterion),
                                           Q_ARG(qint32, 0), Q_ARG(qint32, 1), Q_ARG(QVariant, 1));
             }),
             3001);
    QCOMPARE(errorOf([&] {
                 QMetaObject::invokeMethod(rs.get(), "FindFirst", Q_ARG(QString, criterion));
             }),
             3001);
    RecordsetAccess access(rs.get());
    QCOMPARE(errorOf([&] { access.find(criterion, 0, 1, 1); }), 3001);
    QCOMPARE(rs->absolutePosition(), 2);
}

void tst_Recordset::findFirst_data()
{
    QTest::addColumn<QString>("criterion");
    QTest::addColumn<bool>("noMatch");
    QTest::addColumn<int>("position");
    QTest::newRow("found, any case") << u"name = 'XYZ'"_qs << false << 3;
    QTest::newRow("first of two") << u"name LIKE 'smith%'"_qs << false << 4;
    QTest::newRow("no match stays put") << u"name = 'nobody'"_qs << true << 2;
}

void tst_Recordset::findFirst()
{
    QFETCH(QString, criterion);
    QFETCH(bool, noMatch);
    QFETCH(int, position);
    Connection connection;
    auto rs = openPeople(m_sqlite, &connection);
    rs->setAbsolutePosition(5);
    rs->FindNext(u"id = 1"_qs); // a miss first, so that a stale NoMatch would show
    QVERIFY(rs->noMatch());
    rs->setAbsolutePosition(2);
    rs->FindFirst(criterion);
    QCOMPARE(rs->property("NoMatch").toBool(), noMatch);
    QCOMPARE(rs->absolutePosition(), position);
}

void tst_Recordset::databaseErrors_data()
{
    QTest::addColumn<QString>("backend");
    QTest::addColumn<QString>("source");
    QTest::addColumn<int>("number");
    QTest::addColumn<QString>("fragment"); // part of the driver's message
    for (const char *b : {"sqlite", "postgres"}) {
        const QString backend = QString::fromLatin1(b);
        QTest::addRow("%s no such table", b)
            << backend << u"SELECT * FROM nosuch_table"_qs << 3146 << u"nosuch_table"_qs;
        QTest::addRow("%s no such table by name", b)
            << backend << u"nosuch_table"_qs << 3146 << u"nosuch_table"_qs;
        QTest::addRow("%s bad SQL", b)
            << backend << u"SELEC name FROM zelkon_people"_qs << 3146 << u"SELEC"_qs;
        QTest::addRow("%s no records", b)
            << backend << u"UPDATE zelkon_people SET id = id WHERE id < 0"_qs << 3001
            << u"no records"_qs;
    }
}

void tst_Recordset::databaseErrors()
{
    REQUIRE_BACKEND(cs);
    QFETCH(QString, source);
    QFETCH(int, number);
    QFETCH(QString, fragment);
    const QStringList before = QSqlDatabase::connectionNames();
    Recordset rs;
    QString message;
    QCOMPARE(errorOf([&] { rs.Open(source, cs); }, &message), number);
    QVERIFY2(message.contains(fragment, Qt::CaseInsensitive), qPrintable(message));
    QCOMPARE(rs.state(), 0);
    QCOMPARE(QSqlDatabase::connectionNames(), before);
    QCOMPARE(errorOf([&] { rs.recordCount(); }), 3704);
    rs.Open(peopleSql, cs); // nothing was left half open
    QCOMPARE(rs.recordCount(), 5);
}

void tst_Recordset::connectionErrors_data()
{
    QTest::addColumn<QString>("connectionString");
    QTest::addColumn<int>("number");
    QTest::newRow("unknown driver") << u"Driver=QNOSUCH;Database=x;"_qs << 3706;
    QTest::newRow("server refuses")
        << u"Driver=QPSQL;Host=127.0.0.1;Port=1;Database=x;User=x;"_qs << 3146;
    QTest::newRow("misspelt key") << u"Databse=x.db;"_qs << 3001;
    QTest::newRow("bad port") << u"Driver=QPSQL;Port=abc;"_qs << 3001;
    QTest::newRow("unclosed brace") << u"Database={x;y"_qs << 3001;
    QTest::newRow("no key") << u"x.db"_qs << 3001;
}

void tst_Recordset::connectionErrors()
{
    QFETCH(QString, connectionString);
    QFETCH(int, number);
    const QStringList before = QSqlDatabase::connectionNames();
    Connection connection;
    QCOMPARE(errorOf([&] { connection.Open(connectionString); }), number);
    QCOMPARE(connection.state(), 0);
    Recordset rs;
    QCOMPARE(errorOf([&] { rs.Open(peopleSql, connectionString); }), number);
    QCOMPARE(QSqlDatabase::connectionNames(), before);
}

void tst_Recordset::severalConnections()
{
    const QStringList before = QSqlDatabase::connectionNames();
    auto a = std::make_unique<Connection>();
    auto b = std::make_unique<Connection>();
    a->Open(QString(u"Database="_qs + m_dir.filePath(u"a.db"_qs)));
    b->setConnectionString(u"Driver=QSQLITE; Database = {"_qs + m_dir.filePath(u"b;.db"_qs)
                           + u"};"_qs);
    b->Open();
    QVERIFY(a->connectionName() != b->connectionName());
    QSqlQuery(a->database()).exec(u"CREATE TABLE t AS SELECT 'from a' AS v"_qs);
    QSqlQuery(b->database()).exec(u"CREATE TABLE t AS SELECT 'from b' AS v"_qs);
    QVERIFY(QFile::exists(m_dir.filePath(u"b;.db"_qs)));

    Recordset ra, rb;
    ra.Open(u"t"_qs, QVariant::fromValue<QObject *>(a.get()));
    rb.Open(u"t"_qs, QVariant::fromValue<QObject *>(b.get()));
    QCOMPARE(ra.value(0), QVariant(u"from a"_qs));
    QCOMPARE(rb.value(0), QVariant(u"from b"_qs));

    a->Close();
    QCOMPARE(errorOf([&] { a->Close(); }), 3704);
    Recordset again;
    QCOMPARE(errorOf([&] { again.Open(u"t"_qs, QVariant::fromValue<QObject *>(a.get())); }), 3709);
    again.Open(u"t"_qs, QVariant::fromValue<QObject *>(b.get()));
    QCOMPARE(again.value(0), QVariant(u"from b"_qs));
    QCOMPARE(ra.value(0), QVariant(u"from a"_qs)); // the rows stay after their connection went

    b.reset(); // destroyed while open
    QCOMPARE(QSqlDatabase::connectionNames(), before);
}

void tst_Recordset::closedMembers_data()
{
    QTest::addColumn<QString>("member");
    for (const char *m : {"EOF", "BOF", "RecordCount", "AbsolutePosition", "MoveFirst", "MoveLast",
                          "MoveNext", "MovePrevious", "Close", "Find", "FindFirst", "Fields.Count",
                          "Fields(0)", "kept Field.Value"})
        QTest::newRow(m) << QString::fromLatin1(m);
}

void tst_Recordset::closedMembers()
{
    QFETCH(QString, member);
    Recordset rs;
    rs.Open(peopleSql, m_sqlite);
    QObject *kept = rs.Fields(1);
    QCOMPARE(kept->property("Value"), QVariant(u"Abc"_qs));
    rs.Close();
    const QByteArray name = member.toLatin1();
    const int number = errorOf([&] {
        if (member == QLatin1String("Fields.Count"))
            rs.fieldsObject()->property("Count");
        else if (member == QLatin1String("Fields(0)"))
            QMetaObject::invokeMethod(&rs, "Fields", Q_RETURN_ARG(QObject *, kept),
                                      Q_ARG(QVariant, 0));
        else if (member == QLatin1String("kept Field.Value"))
            kept->property("Value");
        else if (member == QLatin1String("Find"))
            QMetaObject::invokeMethod(&rs, "Find", Q_ARG(QString, u"id = 1"_qs));
        else if (member == QLatin1String("FindFirst"))
            QMetaObject::invokeMethod(&rs, "FindFirst", Q_ARG(QString, u"id = 1"_qs));
        else if (rs.metaObject()->indexOfProperty(name.constData()) >= 0)
            rs.property(name.constData());
        else
            QVERIFY(QMetaObject::invokeMethod(&rs, name.constData()));
    });
    QCOMPARE(number, 3704);

    // Reopened on fewer columns, a kept field beyond them fails instead of dangling.
    rs.Open(u"SELECT id FROM zelkon_people"_qs, m_sqlite);
    QCOMPARE(errorOf([&] { kept->property("Value"); }), 3265);
}

void tst_Recordset::byName()
{
    REQUIRE_BACKEND(cs);
    std::unique_ptr<QObject> connection(createObject(u"ADODB.Connection"_qs));
    std::unique_ptr<QObject> rs(createObject(u"adodb.recordset"_qs));
    QVERIFY(qobject_cast<Connection *>(connection.get()));
    QVERIFY(qobject_cast<Recordset *>(rs.get()));
    QVERIFY(QMetaObject::invokeMethod(connection.get(), "Open", Q_ARG(QVariant, cs)));
    QCOMPARE(connection->property("State").toInt(), 1);
    QVERIFY(QMetaObject::invokeMethod(rs.get(), "Open", Q_ARG(QVariant, u"zelkon_people"_qs),
                                      Q_ARG(QVariant, QVariant::fromValue(connection.get())),
                                      Q_ARG(QVariant, 3), Q_ARG(QVariant, 3), Q_ARG(QVariant, 2)));
    QObject *fields = rs->property("Fields").value<QObject *>();
    QCOMPARE(fields->property("Count").toInt(), 5);
    QVERIFY(QMetaObject::invokeMethod(rs.get(), "Find", Q_ARG(QString, u"name LIKE 'x%'"_qs),
                                      Q_ARG(qint32, 0), Q_ARG(qint32, 1), Q_ARG(QVariant, 1)));
    QCOMPARE(rs->property("EOF").toBool(), false);
    QCOMPARE(rs->property("AbsolutePosition").toInt(), 3);
    QObject *field = nullptr;
    QVERIFY(QMetaObject::invokeMethod(rs.get(), "Fields", Q_RETURN_ARG(QObject *, field),
                                      Q_ARG(QVariant, u"NAME"_qs)));
    QCOMPARE(field->property("Name"), QVariant(u"name"_qs));
    QCOMPARE(field->property("Value"), QVariant(u"Xyz"_qs));
    QObject *item = nullptr;
    QVERIFY(QMetaObject::invokeMethod(fields, "Item", Q_RETURN_ARG(QObject *, item),
                                      Q_ARG(QVariant, 1)));
    QCOMPARE(item, field); // one object per column
    QVERIFY(QMetaObject::invokeMethod(rs.get(), "MoveNext"));
    QCOMPARE(field->property("Value"), QVariant(u"Smith"_qs));
}

void tst_Recordset::accessMembersFail_data()
{
    QTest::addColumn<bool>("null");
    QTest::addColumn<QString>("member");
    for (bool null : {false, true}) {
        for (const char *m :
             {"open", "moveFirst", "moveLast", "moveNext", "atEOF", "fieldCount", "fieldValue",
              "fieldName", "find", "absolutePosition", "findFirst", "noMatch"})
            QTest::addRow("%s %s", null ? "null" : "plain", m) << null << QString::fromLatin1(m);
    }
}

void tst_Recordset::accessMembersFail()
{
    QFETCH(bool, null);
    QFETCH(QString, member);
    QObject plain;
    RecordsetAccess a(null ? nullptr : &plain);
    const QString c = u"id = 1"_qs;
    const int number = errorOf([&] {
        const QHash<QString, std::function<void()>> calls = {
            {u"open"_qs, [&] { a.open(peopleSql, m_sqlite, 3, 3, 1); }},
            {u"moveFirst"_qs, [&] { a.moveFirst(); }},
            {u"moveLast"_qs, [&] { a.moveLast(); }},
            {u"moveNext"_qs, [&] { a.moveNext(); }},
            {u"atEOF"_qs, [&] { a.atEOF(); }},
            {u"fieldCount"_qs, [&] { a.fieldCount(); }},
            {u"fieldValue"_qs, [&] { a.fieldValue(0); }},
            {u"fieldName"_qs, [&] { a.fieldName(0); }},
            {u"find"_qs, [&] { a.find(c, 0, 1, 1); }},
            {u"absolutePosition"_qs, [&] { a.absolutePosition(); }},
            {u"findFirst"_qs, [&] { a.findFirst(c); }},
            {u"noMatch"_qs, [&] { a.noMatch(); }},
        };
        calls.value(member)();
    });
    QCOMPARE(number, null ? 91 : 438);
}

void tst_Recordset::access_data()
{
    QTest::addColumn<bool>("host");
    QTest::newRow("zelkon::Recordset") << false;
    QTest::newRow("host's own recordset") << true;
}

void tst_Recordset::access()
{
    QFETCH(bool, host);
    Recordset rs;
    HostRecordset hostRs(&rs);
    RecordsetAccess a(host ? static_cast<QObject *>(&hostRs) : &rs);
    if (host)
        rs.Open(peopleSql, m_sqlite);
    else
        a.open(peopleSql, m_sqlite, 3, 3, 1);

    QCOMPARE(a.fieldCount(), 5);
    QCOMPARE(a.fieldName(1), u"name"_qs);
    QStringList names;
    for (a.moveFirst(); !a.atEOF(); a.moveNext())
        names << a.fieldValue(1).toString();
    QCOMPARE(names.size(), 5);
    QCOMPARE(names.last(), u"smithers"_qs);

    a.moveFirst();
    a.find(u"name LIKE 'SM%'"_qs, 0, 1, 1);
    QCOMPARE(a.absolutePosition(), 4);
    QVERIFY(IsNull(host ? a.fieldValue(2) : rs.value(2)) == false);
    a.findFirst(u"note = 'x'"_qs);
    QVERIFY(!a.noMatch());
    QCOMPARE(a.fieldValue(0).toInt(), 5);
    a.findFirst(u"note = 'y'"_qs);
    QVERIFY(a.noMatch());
    a.find(u"name = 'nobody'"_qs, 0, 1, 1);
    QVERIFY(a.atEOF());
    QCOMPARE(a.absolutePosition(), -3);
    QCOMPARE(errorOf([&] { a.fieldValue(0); }), 3021); // the recordset's own error, unchanged
    QCOMPARE(errorOf([&] { a.find(u"nosuch = 1"_qs); }), 3001);
}

QTEST_GUILESS_MAIN(tst_Recordset)
#include "tst_recordset.moc"
