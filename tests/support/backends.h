// The databases a data-driven suite runs every case on: a SQLite file and the PostgreSQL server
// that ZELKON_TEST_PG names (tests/data/postgres-server.sh starts one).
#pragma once

#include <QString>
#include <QStringList>
#include <QTest>

// Adds the global data column "connection" with one row per backend; call in initTestCase_data.
inline void addBackends(const QString &sqlite)
{
    QTest::addColumn<QString>("connection");
    QTest::newRow("sqlite") << sqlite;
    QTest::newRow("postgres") << qEnvironmentVariable("ZELKON_TEST_PG");
}

// The backends that are there: SQLite always, the server when one is named.
inline QStringList availableBackends(const QString &sqlite)
{
    const QString pg = qEnvironmentVariable("ZELKON_TEST_PG");
    return pg.isEmpty() ? QStringList{sqlite} : QStringList{sqlite, pg};
}

// In init(): the row's connection string into `target`. A server row skips on a developer's
// machine without a server and fails in CI, where a skipped server test would hide that the
// server path was never run.
#define ZELKON_USE_BACKEND(target) \
    do { \
        QFETCH_GLOBAL(QString, connection); \
        target = connection; \
        if (target.isEmpty() && qEnvironmentVariable("CI") == QLatin1String("true")) \
            QFAIL("ZELKON_TEST_PG is not set: run tests/data/postgres-server.sh and export it"); \
        if (target.isEmpty()) \
            QSKIP("ZELKON_TEST_PG is not set"); \
    } while (false)
