#include "support/backends.h"
#include "support/errorof.h"
#include "support/hostrecordset.h"

#include <zelkon/common/control.h>
#include <zelkon/common/registry.h>
#include <zelkon/common/variants.h>
#include <zelkon/data/connection.h>
#include <zelkon/data/recordset.h>
#include <zelkon/test/testplatform.h>

#include <QAbstractItemView>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>

#include <memory>

using namespace zelkon;

// Every case runs on a SQLite file and on the PostgreSQL server that ZELKON_TEST_PG names; both
// hold the same table of five people.
class tst_Recordset : public QObject
{
    Q_OBJECT

    TestPlatform m_platform;
    QTemporaryDir m_dir;
    const QString m_sqlite = u"Driver=QSQLITE;Database="_qs + m_dir.filePath(u"people.db"_qs);
    const QString m_pg = qEnvironmentVariable("ZELKON_TEST_PG");
    // One table per test process, so that two runs against one server do not meet.
    const QString m_table = u"zelkon_people_%1"_qs.arg(QCoreApplication::applicationPid());
    const QString m_peopleSql
        = u"SELECT id, name, born, score, note FROM %1 ORDER BY id"_qs.arg(m_table);

    QString m_cs; // the connection string of the case's backend
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
                   " (2, '  abd ', '2023-12-31', 2.25, NULL), (3, 'Xyz', '2024-02-01', -3, ''),"
                   " (4, NULL, '2024-01-05', 10, 'O''Brien'), (5, 'smithers', NULL, NULL, 'x')"_qs;
        for (const QString &s : statements)
            QVERIFY2(q.exec(s.arg(m_table)), qPrintable(s));
    }

private Q_SLOTS:
    void initTestCase_data() { addBackends(m_sqlite); }
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        for (const QString &cs : availableBackends(m_sqlite))
            createPeople(cs, true);
    }
    void cleanupTestCase()
    {
        if (!m_pg.isEmpty())
            createPeople(m_pg, false);
    }
    void init() { ZELKON_USE_BACKEND(m_cs); }

    // A host's road through a recordset: created and opened by name, walked, read, closed.
    void walk()
    {
        std::unique_ptr<QObject> connection(createObject(u"ADODB.Connection"_qs));
        std::unique_ptr<QObject> object(createObject(u"adodb.recordset"_qs));
        auto *rs = qobject_cast<Recordset *>(object.get());
        QVERIFY(rs && qobject_cast<Connection *>(connection.get()));
        QVERIFY(QMetaObject::invokeMethod(connection.get(), "Open", Q_ARG(QVariant, m_cs)));
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
        QVariantList names;
        while (!rs->property("EOF").toBool()) {
            QCOMPARE(rs->property("AbsolutePosition").toInt(), names.size() + 1);
            names << name->property("Value");
            QVERIFY(QMetaObject::invokeMethod(rs, "MoveNext"));
        }
        QCOMPARE(names,
                 QVariantList({u"Abc"_qs, u"  abd "_qs, u"Xyz"_qs, nullVariant(), u"smithers"_qs}));
        QCOMPARE(rs->absolutePosition(), -3);
        QCOMPARE(errorOf([&] { name->property("Value"); }), 3021);
        QCOMPARE(errorOf([&] { rs->MoveNext(); }), 3021);

        rs->MoveLast();
        QVERIFY(IsNull(rs->value(2)) && IsNull(rs->value(3)));
        rs->MoveFirst();
        QCOMPARE(rs->value(2).toDateTime(), QDateTime(QDate(2024, 1, 5), QTime(0, 0)));
        if (m_cs != m_sqlite) // a server's date column arrives as a date-time
            QCOMPARE(rs->value(2).metaType(), QMetaType::fromType<QDateTime>());
        QCOMPARE(rs->value(3), QVariant(1.5));
        rs->MovePrevious();
        QVERIFY(rs->atBOF() && !rs->atEOF());
        QCOMPARE(rs->absolutePosition(), -2);
        QCOMPARE(errorOf([&] { rs->MovePrevious(); }), 3021);
        rs->setAbsolutePosition(2);
        QVERIFY(IsNull(rs->value(4)));
        rs->setAbsolutePosition(3);
        QCOMPARE(rs->value(4), QVariant(QString())); // empty text is not Null
        QCOMPARE(errorOf([&] { rs->setAbsolutePosition(6); }), 3001);

        QVERIFY(QMetaObject::invokeMethod(rs, "Close"));
        QCOMPARE(errorOf([&] { rs->Close(); }), 3704);
        QCOMPARE(errorOf([&] { name->property("Value"); }), 3704);
        // Reopened on fewer columns, a kept field beyond them fails instead of dangling.
        rs->Open(QString(u"SELECT id FROM "_qs + m_table), m_cs);
        QCOMPARE(errorOf([&] { name->property("Value"); }), 3265);
    }

    void open_data()
    {
        QTest::addColumn<QString>("connection"); // empty: the backend's
        QTest::addColumn<QString>("source"); // {t} stands for the people table
        QTest::addColumn<QVariant>("options");
        QTest::addColumn<int>("count");
        QTest::addColumn<int>("error");
        QTest::addColumn<QString>("fragment"); // part of the error's message
        auto row = [](const char *tag, const char *connection, const char *source,
                      const QVariant &options, int count, int error, const char *fragment) {
            QTest::newRow(tag) << QString::fromLatin1(connection) << QString::fromLatin1(source)
                               << options << count << error << QString::fromLatin1(fragment);
        };
        const QVariant guess = missingVariant();
        row("table guessed", "", "{t}", guess, 5, 0, "");
        row("table in other case", "", "{T}", 2, 5, 0, "");
        row("table direct", "", "{t}", 512, 5, 0, "");
        row("no rows", "", "SELECT * FROM {t} WHERE id < 0", guess, 0, 0, "");
        row("no such table", "", "SELECT * FROM nosuch_table", guess, 0, 3146, "nosuch_table");
        row("no such table by name", "", "nosuch_table", 2, 0, 3146, "nosuch_table");
        row("bad SQL", "", "SELEC name FROM {t}", guess, 0, 3146, "SELEC");
        row("no records", "", "UPDATE {t} SET id = id WHERE id < 0", 1, 0, 3001, "no records");
        row("no source", "", " ", guess, 0, 3001, "source");
        row("unknown driver", "Driver=QNOSUCH;Database=x;", "{t}", guess, 0, 3706, "QNOSUCH");
        row("server refuses", "Driver=QPSQL;Host=127.0.0.1;Port=1;Database=x;User=x;", "{t}", guess,
            0, 3146, "refused");
        row("misspelt key", "Databse=x.db;", "{t}", guess, 0, 3001, "Databse");
        row("bad port", "Driver=QPSQL;Port=abc;", "{t}", guess, 0, 3001, "abc");
        row("unclosed brace", "Database={x;y", "{t}", guess, 0, 3001, "{");
        row("no key", "x.db", "{t}", guess, 0, 3001, "x.db");
    }
    void open()
    {
        QFETCH(QString, connection);
        QFETCH(QString, source);
        QFETCH(QVariant, options);
        QFETCH(int, count);
        QFETCH(int, error);
        QFETCH(QString, fragment);
        source.replace(u"{t}"_qs, m_table).replace(u"{T}"_qs, m_table.toUpper());
        const QStringList before = QSqlDatabase::connectionNames();
        Recordset rs;
        QString message;
        const QString cs = connection.isEmpty() ? m_cs : connection;
        QCOMPARE(errorOf([&] { rs.Open(source, cs, 3, 3, options); }, &message), error);
        QVERIFY2(message.contains(fragment, Qt::CaseInsensitive), qPrintable(message));
        QCOMPARE(errorOf([&] { rs.MoveLast(); }), error ? 3704 : 0); // a failed Open: closed
        QCOMPARE(QSqlDatabase::connectionNames(), before);
        if (!error) {
            QCOMPARE(rs.recordCount(), count);
            QCOMPARE(rs.atBOF() && rs.atEOF(), count == 0); // empty: at both ends at once
        }
    }

    void find_data()
    {
        QTest::addColumn<QString>("criterion");
        QTest::addColumn<int>("skip");
        QTest::addColumn<int>("direction");
        QTest::addColumn<QVariant>("start");
        QTest::addColumn<int>("from"); // AbsolutePosition before the search
        QTest::addColumn<int>("expected"); // after it; 0: refused, the position stays
        auto row = [](const char *tag, const char *criterion, int skip, int direction,
                      const QVariant &start, int from, int expected) {
            QTest::newRow(tag) << QString::fromLatin1(criterion) << skip << direction << start
                               << from << expected;
        };
        const QVariant current = missingVariant();
        row("from the current record", "id > 3", 0, 1, current, 1, 4);
        row("the current record itself", "id > 3", 0, 1, current, 4, 4);
        row("skip 1 from the current", "id > 3", 1, 1, current, 4, 5);
        row("from the first", "id < 2", 0, 1, 1, 3, 1);
        row("forward does not wrap", "name LIKE 'ab%'", 0, 1, current, 5, -3);
        row("backward from the last", "name LIKE 'ab%'", 0, -1, 2, 1, 1);
        row("backward skip 1", "id = 3", 1, -1, 2, 1, 3);
        row("no match backward", "name = 'smithers'", 0, -1, current, 3, -2);
        row("decimal column", "score <= -3", 0, 1, current, 1, 3);
        row("#date# column", "born = #2024-01-05#", 0, 1, current, 2, 4);
        row("#M/d/yyyy# > column", "born > #1/5/2024#", 0, 1, current, 1, 3);
        row("bad direction", "id = 1", 0, 2, current, 2, 0);
        row("bad start", "id = 1", 0, 1, 3, 2, 0);
        row("refused criterion", "note = 'O'Brien'", 0, 1, 1, 2, 0);
    }
    // Each search runs once from C++ and once by name, as a host calls it.
    void find()
    {
        QFETCH(QString, criterion);
        QFETCH(int, skip);
        QFETCH(int, direction);
        QFETCH(QVariant, start);
        QFETCH(int, from);
        QFETCH(int, expected);
        Recordset rs;
        rs.Open(m_peopleSql, m_cs);
        for (const bool byName : {false, true}) {
            rs.setAbsolutePosition(from);
            bool invoked = true;
            const int number = errorOf([&] {
                if (!byName)
                    rs.Find(criterion, skip, direction, start);
                else
                    invoked = QMetaObject::invokeMethod(
                        &rs, "Find", Q_ARG(QString, criterion), Q_ARG(qint32, skip),
                        Q_ARG(qint32, direction), Q_ARG(QVariant, start));
            });
            QVERIFY(invoked);
            QCOMPARE(number, expected ? 0 : 3001);
            QCOMPARE(rs.absolutePosition(), expected ? expected : from);
            QCOMPARE(rs.atEOF(), expected == -3);
            QCOMPARE(rs.atBOF(), expected == -2);
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
        QCOMPARE(errorOf([&] { b->Open(); }), 3705);
        QCOMPARE(errorOf([&] { b->setConnectionString(QString()); }), 3705);
        QVERIFY(QSqlQuery(a->database())
                    .exec(u"CREATE TABLE IF NOT EXISTS t AS SELECT 'from a' AS v"_qs));
        QVERIFY(QSqlQuery(b->database())
                    .exec(u"CREATE TABLE IF NOT EXISTS t AS SELECT 'from b' AS v"_qs));
        QVERIFY(QFile::exists(m_dir.filePath(u"b;.db"_qs)));

        Recordset ra, rb;
        ra.Open(u"t"_qs, QVariant::fromValue<QObject *>(a.get()));
        rb.setActiveConnection(QVariant::fromValue<QObject *>(b.get()));
        rb.Open(u"t"_qs);
        QCOMPARE(ra.value(0), QVariant(u"from a"_qs));
        QCOMPARE(rb.value(0), QVariant(u"from b"_qs));

        a->Close();
        QCOMPARE(errorOf([&] { a->Close(); }), 3704);
        Recordset again;
        QCOMPARE(errorOf([&] { again.Open(u"t"_qs, QVariant::fromValue<QObject *>(a.get())); }),
                 3709);
        QCOMPARE(ra.value(0), QVariant(u"from a"_qs)); // the rows stay after their connection
        b.reset(); // destroyed while open
        QCOMPARE(QSqlDatabase::connectionNames(), before);
    }

    // Controls reach any recordset by member name: a host's own class loads its rows and gives
    // the row tips in both search dialects; an object that is no usable recordset loads nothing
    // and raises nothing.
    void hostRecordset_data()
    {
        QTest::addColumn<QString>("source");
        QTest::addColumn<int>("dialect"); // TypeData: 0 Find/AbsolutePosition, 1 FindFirst/NoMatch
        QTest::addColumn<QStringList>("rows");
        const QStringList people = {u"Abc"_qs, u"abd"_qs, u"Xyz"_qs, u"smithers"_qs};
        QTest::newRow("host's own, Find") << u"host"_qs << 0 << people;
        QTest::newRow("host's own, FindFirst") << u"host"_qs << 1 << people;
        QTest::newRow("closed recordset") << u"closed"_qs << 0 << QStringList();
        QTest::newRow("plain object") << u"plain"_qs << 0 << QStringList();
    }
    void hostRecordset()
    {
        QFETCH(QString, source);
        QFETCH(int, dialect);
        QFETCH(QStringList, rows);
        HostRecordset host;
        QObject plain;
        if (source == QLatin1String("host"))
            host.r.Open(QString(u"SELECT name, note FROM "_qs + m_table + u" ORDER BY id"_qs),
                        m_cs);
        const QHash<QString, QObject *> objects
            = {{u"host"_qs, &host}, {u"closed"_qs, &host.r}, {u"plain"_qs, &plain}};

        QWidget window;
        std::unique_ptr<Control> combo(createControl(u"CheckCombo"_qs, &window));
        combo->setProperty("Sorting", false);
        combo->setProperty("TypeData", dialect);
        QVERIFY(combo->setProperty("RecordsetData", QVariant::fromValue(objects.value(source))));
        QAbstractItemView *list = nullptr;
        for (auto *view : combo->findChildren<QAbstractItemView *>(u"List"_qs)) {
            if (!view->isHidden())
                list = view;
        }
        QVERIFY(list);
        QStringList texts; // trimmed, a Null text adds no row
        for (int i = 0; i < list->model()->rowCount(); ++i)
            texts << list->model()->index(i, 0).data().toString();
        QCOMPARE(texts, rows);
        if (rows.isEmpty())
            return;

        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        QTest::mouseClick(combo->findChild<QToolButton *>(u"ButDropDown"_qs), Qt::LeftButton);
        QWidget *form = combo->findChild<QWidget *>(u"frmList"_qs);
        QVERIFY(QTest::qWaitForWindowActive(form));
        // The tip of the row under the mouse is the record's note. The criterion is built from
        // the trimmed text, which does not find "  abd ", and a stale tip must not stay.
        const QList<std::pair<int, QString>> hovers
            = {{0, u"first"_qs}, {1, QString()}, {0, u"first"_qs}, {2, QString()}, {3, u"x"_qs}};
        for (const auto &[row, tip] : hovers) {
            const QRect rect = list->visualRect(list->model()->index(row, 0));
            QTest::mouseMove(form->windowHandle(), list->viewport()->mapTo(form, rect.center()));
            QTRY_COMPARE(list->toolTip(), tip);
        }
    }
};

QTEST_MAIN(tst_Recordset)
#include "tst_recordset.moc"
