// Reloading a full check list with every row checked, against a bare fill of the same rows.
#include <zelkon/checklist/checkcombo.h>

#include <QApplication>
#include <QListWidget>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <vector>

using namespace zelkon;

namespace {

constexpr int Rows = 32767;

// Distinct texts in a scrambled order, so that the sorted list has real sorting to do.
QVariantList distinctRows()
{
    QVariantList rows;
    rows.reserve(Rows);
    for (int i = 0; i < Rows; ++i)
        rows.append(QStringLiteral("Item %1").arg((i * 7919) % Rows, 5, 10, QLatin1Char('0')));
    return rows;
}

// The processor time of this thread, in seconds: the work is all on the user-interface thread,
// and a run that the shared machine preempts then costs no more than one that it does not.
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

// The baseline: one checkable item per row added to a shown list widget.
double bareFill(QListWidget &list, const QVariantList &rows)
{
    list.clear();
    QCoreApplication::processEvents();
    const double start = threadSeconds();
    for (const QVariant &row : rows) {
        auto *item = new QListWidgetItem(row.toString());
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
        item->setCheckState(Qt::Checked);
        list.addItem(item);
    }
    return threadSeconds() - start;
}

void reloadAllChecked(benchmark::State &state)
{
    const bool sorted = state.range(0) != 0;
    const QVariantList rows = distinctRows();
    QListWidget bare;
    bare.resize(200, 300);
    bare.show();

    CheckCombo combo;
    combo.setSorting(sorted);
    combo.setTypeData(CheckCombo::ArData);
    combo.setSArrayData(rows);

    // The two are measured in turn, and each by its median: on a shared machine a single
    // preempted run would otherwise decide the ratio.
    std::vector<double> reloads;
    std::vector<double> bares;
    for (auto _ : state) {
        combo.SelectAll();
        QCoreApplication::processEvents();
        const double start = threadSeconds();
        combo.setSArrayData(rows);
        const double seconds = threadSeconds() - start;
        state.SetIterationTime(seconds);
        reloads.push_back(seconds);
        bares.push_back(bareFill(bare, rows));
        if (combo.ArrayChecked().toList().size() != Rows)
            state.SkipWithError("checks were lost in the reload");
    }
    const double reload = median(reloads);
    const double bareTime = median(bares);
    const double ratio = reload / bareTime;
    state.counters["ratio_to_bare_fill"] = ratio;
    std::printf("%s reload of %d checked rows: %.1f ms, bare fill %.1f ms, ratio %.2f\n",
                sorted ? "sorted" : "unsorted", Rows, 1e3 * reload, 1e3 * bareTime, ratio);
}

} // namespace

BENCHMARK(reloadAllChecked)
    ->ArgName("sorted")
    ->Arg(0)
    ->Arg(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(15);

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
