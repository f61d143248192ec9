// Formatting the display of NumEdit (grouping, two decimals, halves away from zero) against
// QLocale's own fixed-point formatting of the same values in the same run.
#include <zelkon/numedit/displayformat.h>

#include <benchmark/benchmark.h>

#include <QLocale>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <random>
#include <vector>

namespace {

constexpr int valueCount = 100000;

const std::vector<double> &values()
{
    static const std::vector<double> v = [] {
        std::mt19937_64 random(20240510);
        std::uniform_real_distribution<double> magnitude(-7.0, 9.0);
        std::uniform_int_distribution<int> sign(0, 1);
        std::vector<double> out;
        out.reserve(valueCount);
        for (int i = 0; i < valueCount; ++i) {
            const double x = std::pow(10.0, magnitude(random));
            out.push_back(sign(random) ? -x : x);
        }
        return out;
    }();
    return v;
}

const QLocale locale(QLocale::English, QLocale::UnitedStates);
double baselineNs = 0;
double displayNs = 0;

void BM_QLocaleToString(benchmark::State &state)
{
    const std::vector<double> &v = values();
    for (auto _ : state) {
        qsizetype total = 0;
        for (double x : v)
            total += locale.toString(x, 'f', 2).size();
        benchmark::DoNotOptimize(total);
    }
    state.SetItemsProcessed(state.iterations() * valueCount);
}

void BM_NumEditDisplay(benchmark::State &state)
{
    const std::vector<double> &v = values();
    zelkon::DisplayFormat format(2);
    for (auto _ : state) {
        qsizetype total = 0;
        for (double x : v)
            total += format.format(x, locale).size();
        benchmark::DoNotOptimize(total);
    }
    state.SetItemsProcessed(state.iterations() * valueCount);
    // The same comparison once more inside this run, as a counter next to the timings.
    const auto seconds = [&](auto &&formatOne) {
        const auto start = std::chrono::steady_clock::now();
        qsizetype total = 0;
        for (double x : v)
            total += formatOne(x).size();
        benchmark::DoNotOptimize(total);
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    };
    double baseline = 0;
    double display = 0;
    for (int round = 0; round < 3; ++round) {
        baseline += seconds([](double x) { return locale.toString(x, 'f', 2); });
        display += seconds([&](double x) { return format.format(x, locale); });
    }
    state.counters["ratio"] = display / baseline;
}

// Runs both, then reports the ratio of the display formatting to the baseline.
class RatioReporter : public benchmark::ConsoleReporter
{
public:
    void ReportRuns(const std::vector<Run> &runs) override
    {
        for (const Run &run : runs) {
            const double ns = run.GetAdjustedRealTime();
            if (run.benchmark_name().find("QLocaleToString") != std::string::npos)
                baselineNs = ns;
            else if (run.benchmark_name().find("NumEditDisplay") != std::string::npos)
                displayNs = ns;
        }
        ConsoleReporter::ReportRuns(runs);
    }
};

} // namespace

BENCHMARK(BM_QLocaleToString)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_NumEditDisplay)->Unit(benchmark::kMillisecond);

int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    if (baselineNs > 0 && displayNs > 0)
        std::printf("display / QLocale::toString ratio: %.2f (target <= 1.5)\n",
                    displayNs / baselineNs);
    benchmark::Shutdown();
    return 0;
}
