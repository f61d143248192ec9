// The Navigator over 100,000 records: one keystroke's search against QCompleter's, and the list
// fill against a bare QListWidget::addItems of the same texts.
#include "benchratio.h"

#include <zelkon/data/connection.h>
#include <zelkon/data/recordset.h>
#include <zelkon/navigator/navigator.h>

#include <QApplication>
#include <QCompleter>
#include <QListWidget>
#include <QSqlQuery>
#include <QStringListModel>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <ctime>
#include <vector>

using namespace zelkon;

namespace {

constexpr int Records = 100000;

// The processor time of this thread: all the work is on the user-interface thread, and a run the
// shared machine preempts then costs no more than one it does not.
double threadSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) + double(now.tv_nsec) / 1e9;
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.empty() ? 0 : values[values.size() / 2];
}

// Names made of three syllables, scattered so that a prefix's first match lies anywhere.
QString name(int i)
{
    static const char *const syllables[] = {"ba",  "ke",  "mo", "ri", "sun", "ta",  "vel", "zo",
                                            "lin", "dor", "pa", "gu", "fe",  "nix", "ho",  "cra"};
    const unsigned h = unsigned(i) * 2654435761u;
    return QString::fromLatin1(syllables[h >> 28]) + QLatin1String(syllables[(h >> 24) & 15])
        + QLatin1String(syllables[(h >> 20) & 15]) + QString::number(i % 97);
}

// A SQLite file with the records, opened as a recordset of (id, name).
struct Data
{
    Data()
    {
        connection.Open(
            QString(QStringLiteral("Driver=QSQLITE;Database=") + dir.filePath(u"n.db"_qs)));
        QSqlQuery q(connection.database());
        q.exec(QStringLiteral("CREATE TABLE people (id INTEGER, name VARCHAR(40))"));
        connection.database().transaction();
        q.prepare(QStringLiteral("INSERT INTO people VALUES (?, ?)"));
        for (int i = 0; i < Records; ++i) {
            q.addBindValue(i);
            q.addBindValue(name(i));
            q.exec();
            texts << name(i);
        }
        connection.database().commit();
        recordset.Open(QStringLiteral("SELECT id, name FROM people ORDER BY id"),
                       QVariant::fromValue<QObject *>(&connection));
    }
    QTemporaryDir dir;
    Connection connection;
    Recordset recordset;
    QStringList texts;
};

Data &data()
{
    static Data d;
    return d;
}

// Early, middle and late first matches, and one prefix that matches nothing.
const QStringList prefixes = {u"ba"_qs,     u"kemo"_qs, u"crahon"_qs,  u"velzo"_qs,
                              u"nixdor"_qs, u"guf"_qs,  u"tatata5"_qs, u"qq"_qs};

void keystroke(benchmark::State &state)
{
    Data &d = data();
    Navigator nav;
    nav.setFieldInd(1);
    nav.setDataSourthe(QVariant::fromValue<QObject *>(&d.recordset));
    QStringListModel model(d.texts);

    // Each keystroke's prefix is searched afresh by both: a completer answers a prefix it has
    // seen from its cache, which is no search, so each prefix gets a new completer, made outside
    // the timing. The Navigator's text is emptied before each prefix, also outside it.
    std::vector<double> ours, bare;
    for (auto _ : state) {
        double navTime = 0;
        double completerTime = 0;
        for (const QString &prefix : prefixes) {
            nav.setText(QString());
            double start = threadSeconds();
            nav.setText(prefix);
            navTime += threadSeconds() - start;

            QCompleter completer(&model);
            completer.setModelSorting(QCompleter::UnsortedModel);
            completer.setCaseSensitivity(Qt::CaseInsensitive); // as the recordset's LIKE compares
            start = threadSeconds();
            completer.setCompletionPrefix(prefix);
            benchmark::DoNotOptimize(completer.currentCompletion());
            completerTime += threadSeconds() - start;
        }
        ours.push_back(navTime);
        bare.push_back(completerTime);
        state.SetIterationTime(navTime);
    }
    // The ratio of the times summed over the prefixes: the average keystroke against the average.
    const double ratio = median(ours) / median(bare);
    state.counters["ratio"] = ratio;
    state.counters["zelkon_us_per_key"] = 1e6 * median(ours) / double(prefixes.size());
    state.counters["completer_us_per_key"] = 1e6 * median(bare) / double(prefixes.size());
    bench::ratios()["keystroke search vs QCompleter"] = ratio;
}

void fill(benchmark::State &state)
{
    Data &d = data();
    Navigator nav;
    nav.setFieldInd(1);
    std::vector<double> ours, bare;
    for (auto _ : state) {
        nav.setDataSourthe(QVariant());
        double start = threadSeconds();
        nav.setDataSourthe(QVariant::fromValue<QObject *>(&d.recordset));
        ours.push_back(threadSeconds() - start);
        QListWidget list;
        start = threadSeconds();
        list.addItems(d.texts);
        bare.push_back(threadSeconds() - start);
        state.SetIterationTime(ours.back());
    }
    const double ratio = median(ours) / median(bare);
    state.counters["ratio"] = ratio;
    bench::ratios()["list fill vs QListWidget::addItems"] = ratio;
}

} // namespace

BENCHMARK(keystroke)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(30);
BENCHMARK(fill)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(9);

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    return bench::runAndPrintRatios(
        argc, argv,
        {{"keystroke search vs QCompleter", 1.0}, {"list fill vs QListWidget::addItems", 1.5}});
}
