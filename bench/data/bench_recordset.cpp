// Opening and walking a 100,000-row result, and a LIKE search over it, each against a bare
// forward-only QSqlQuery over the same rows in the same iteration (so that a busy machine slows
// both alike). The "ratio" counter is the Zelkon time over the bare time.
#include <zelkon/data/connection.h>
#include <zelkon/data/recordset.h>

#include "benchratio.h"

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QVariant>

#include <chrono>
#include <cstdio>
#include <map>
#include <string>

namespace {

constexpr int rowCount = 100'000;
const QString selectAll = QStringLiteral("SELECT id, name, city, amount FROM people");

zelkon::Connection &database()
{
    static zelkon::Connection *connection = [] {
        auto *c = new zelkon::Connection;
        c->Open(QStringLiteral("Driver=QSQLITE;Database=:memory:;"));
        QSqlDatabase db = c->database();
        QSqlQuery q(db);
        q.exec(
            QStringLiteral("CREATE TABLE people (id INTEGER, name TEXT, city TEXT, amount REAL)"));
        db.transaction();
        q.prepare(QStringLiteral("INSERT INTO people VALUES (?, ?, ?, ?)"));
        for (int i = 0; i < rowCount; ++i) {
            q.addBindValue(i);
            q.addBindValue(QStringLiteral("Name%1").arg(i, 6, 10, QLatin1Char('0')));
            q.addBindValue(i % 7 == 0 ? QVariant()
                                      : QVariant(QStringLiteral("City %1").arg(i % 97)));
            q.addBindValue(i * 0.25);
            q.exec();
        }
        db.commit();
        return c;
    }();
    return *connection;
}

using zelkon::bench::Clock;
using zelkon::bench::report;

void BM_OpenAndWalk(benchmark::State &state)
{
    zelkon::Connection &c = database();
    const QVariant connection = QVariant::fromValue<QObject *>(&c);
    Clock::duration bare{}, ours{};
    for (auto _ : state) {
        const auto t0 = Clock::now();
        {
            QSqlQuery q(c.database());
            q.setForwardOnly(true);
            q.exec(selectAll);
            while (q.next()) {
                for (int i = 0; i < 4; ++i)
                    benchmark::DoNotOptimize(q.value(i));
            }
        }
        const auto t1 = Clock::now();
        {
            zelkon::Recordset rs;
            rs.Open(selectAll, connection, 3, 3, 1);
            for (rs.MoveFirst(); !rs.atEOF(); rs.MoveNext()) {
                for (int i = 0; i < 4; ++i)
                    benchmark::DoNotOptimize(rs.value(i));
            }
        }
        const auto t2 = Clock::now();
        bare += t1 - t0;
        ours += t2 - t1;
    }
    report(state, "open+walk vs bare loop", bare, ours);
}

// The search stands on the last row: every row is compared, each over the whole shared prefix
// and without regard to case.
void BM_FindLike(benchmark::State &state)
{
    zelkon::Connection &c = database();
    zelkon::Recordset rs;
    rs.Open(selectAll, QVariant::fromValue<QObject *>(&c), 3, 3, 1);
    const QString criterion
        = QStringLiteral("name LIKE 'name%1%'").arg(rowCount - 1, 6, 10, QLatin1Char('0'));
    Clock::duration bare{}, ours{};
    for (auto _ : state) {
        const auto t0 = Clock::now();
        {
            QSqlQuery q(c.database());
            q.setForwardOnly(true);
            q.exec(QStringLiteral("SELECT name FROM people"));
            while (q.next())
                benchmark::DoNotOptimize(q.value(0).toString());
        }
        const auto t1 = Clock::now();
        rs.MoveFirst();
        rs.Find(criterion, 0, 1, 1);
        const auto t2 = Clock::now();
        if (rs.absolutePosition() != rowCount)
            state.SkipWithError("the search missed the last row");
        bare += t1 - t0;
        ours += t2 - t1;
    }
    report(state, "Find LIKE 'prefix%' vs one bare column pass", bare, ours);
}

BENCHMARK(BM_OpenAndWalk)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_FindLike)->Unit(benchmark::kMillisecond)->MinTime(2.0);

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    return zelkon::bench::runAndPrintRatios(
        argc, argv,
        {{"open+walk vs bare loop", 1.5}, {"Find LIKE 'prefix%' vs one bare column pass", 1.0}});
}
