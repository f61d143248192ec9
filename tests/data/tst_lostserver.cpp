// A database server that goes away in the middle of a session: a server of this test's own,
// stopped while a recordset, a CheckCombo and a Navigator still use it.
#include <zelkon/checklist/checkcombo.h>
#include <zelkon/common/error.h>
#include <zelkon/common/formfile.h>
#include <zelkon/data/connection.h>
#include <zelkon/data/recordset.h>
#include <zelkon/navigator/navigator.h>
#include <zelkon/test/testplatform.h>

#include "support/errorof.h"

#include <QDir>
#include <QLineEdit>
#include <QProcess>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>

#include <pwd.h>
#include <unistd.h>

using namespace zelkon;

class tst_LostServer : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir{QStringLiteral("/tmp/zelkon-lost-XXXXXX")};
    QString m_bin;
    int m_port = 0;
    bool m_running = false;

    // Runs a server binary as the user postgres; true when it succeeded.
    bool run(const QString &tool, const QStringList &arguments)
    {
        QProcess process;
        process.start(QStringLiteral("runuser"),
                      QStringList{QStringLiteral("-u"), QStringLiteral("postgres"),
                                  QStringLiteral("--"), m_bin + QLatin1Char('/') + tool}
                          + arguments);
        return process.waitForFinished(120000) && process.exitStatus() == QProcess::NormalExit
            && process.exitCode() == 0;
    }
    void stopServer()
    {
        if (m_running)
            run(QStringLiteral("pg_ctl"),
                {QStringLiteral("-D"), m_dir.filePath(QStringLiteral("data")), QStringLiteral("-m"),
                 QStringLiteral("immediate"), QStringLiteral("-w"), QStringLiteral("stop")});
        m_running = false;
    }
    QString connectionString() const
    {
        return QStringLiteral(
                   "Driver=QPSQL;Host=127.0.0.1;Port=%1;Database=postgres;User=postgres;")
            .arg(m_port);
    }
    const QString m_query = QStringLiteral("SELECT name, id FROM lost ORDER BY id");

private Q_SLOTS:
    void initTestCase()
    {
        const QStringList versions = QDir(QStringLiteral("/usr/lib/postgresql"))
                                         .entryList(QDir::Dirs | QDir::NoDotAndDotDot);
        if (versions.isEmpty() || geteuid() != 0 || !getpwnam("postgres"))
            QSKIP("no PostgreSQL server binaries, or not root to run them as postgres");
        m_bin = QStringLiteral("/usr/lib/postgresql/%1/bin").arg(versions.last());
        QVERIFY(m_dir.isValid());
        QVERIFY(
            QProcess::execute(QStringLiteral("chown"), {QStringLiteral("postgres:"), m_dir.path()})
            == 0);
        const QString data = m_dir.filePath(QStringLiteral("data"));
        QVERIFY(run(QStringLiteral("initdb"),
                    {QStringLiteral("-D"), data, QStringLiteral("-U"), QStringLiteral("postgres"),
                     QStringLiteral("--auth=trust")}));
        // A port of this process's own: another suite's server may run beside this one.
        for (m_port = 56000 + int(getpid() % 2000); !m_running && m_port < 60000; m_port += 97) {
            m_running = run(QStringLiteral("pg_ctl"),
                            {QStringLiteral("-D"), data, QStringLiteral("-w"), QStringLiteral("-t"),
                             QStringLiteral("60"), QStringLiteral("-l"),
                             m_dir.filePath(QStringLiteral("server.log")), QStringLiteral("-o"),
                             QStringLiteral("-c listen_addresses=127.0.0.1 -p %1 -k %2")
                                 .arg(m_port)
                                 .arg(m_dir.path()),
                             QStringLiteral("start")});
            if (m_running)
                break;
        }
        QVERIFY(m_running);
        Connection setup;
        setup.Open(connectionString());
        QSqlQuery q(setup.database());
        QVERIFY(q.exec(QStringLiteral("CREATE TABLE lost AS SELECT g AS id, 'row ' || g AS name "
                                      "FROM generate_series(1, 20) g")));
    }
    void cleanupTestCase() { stopServer(); }

    void serverStopsMidSession()
    {
        // Given a recordset, a CheckCombo and a Navigator reading the server
        TestPlatform platform;
        Connection connection;
        connection.Open(connectionString());
        Recordset recordset;
        recordset.Open(m_query, QVariant::fromValue<QObject *>(&connection));
        QWidget form;
        CheckCombo *combo = new CheckCombo(&form);
        combo->setCommandText(m_query);
        combo->setConnect(&connection);
        Navigator *nav = new Navigator(&form);
        nav->setDataSourthe(QVariant::fromValue<QObject *>(&recordset));
        form.show();

        // When the server goes away
        stopServer();

        // Then a new recordset and a refresh raise the database's error to the caller
        QString message;
        Recordset again;
        QVERIFY(errorOf([&] { again.Open(m_query, QVariant::fromValue<QObject *>(&connection)); },
                        &message)
                >= 3001);
        QVERIFY(!message.isEmpty());
        QVERIFY(errorOf([&] { combo->Refresh(); }) >= 3001);
        // and what is already in memory keeps working: the rows are moved through, the check
        // list opens, the navigator searches with its errors ignored, and the form still saves
        QCOMPARE(errorOf([&] {
                     recordset.MoveLast();
                     recordset.MoveFirst();
                     recordset.MoveNext();
                 }),
                 0);
        QTest::mouseClick(combo->findChild<QWidget *>(QStringLiteral("ButDropDown")),
                          Qt::LeftButton);
        QVERIFY(combo->findChild<QWidget *>(QStringLiteral("frmList"))->isVisible());
        QLineEdit *text1 = nav->findChild<QLineEdit *>(QStringLiteral("Text1"));
        QTest::keyClicks(text1, QStringLiteral("row 1"));
        QCOMPARE(text1->text(), QStringLiteral("row 1"));
        QCOMPARE(errorOf([&] { saveForm(form, m_dir.filePath(QStringLiteral("lost.zform"))); }), 0);
    }
};

QTEST_MAIN(tst_LostServer)
#include "tst_lostserver.moc"
