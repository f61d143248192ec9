// NumEdit's formatted display (grouping, two decimals, halves away from zero) through its public
// surface: Value puts and the shown text, against a bare line edit that shows QLocale's own
// fixed-point text of the same values, in the same iteration (so that a busy machine slows both
// alike). The "ratio" counter is the NumEdit time over the bare time.
#include <zelkon/common/platform.h>
#include <zelkon/numedit/numedit.h>

#include "benchratio.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QLineEdit>

#include <cmath>
#include <random>
#include <vector>

namespace {

constexpr int valueCount = 10000;

using zelkon::bench::Clock;

const QLocale &english()
{
    static const QLocale locale(QLocale::English, QLocale::UnitedStates);
    return locale;
}

// Both sides format with the same locale.
class EnglishPlatform : public zelkon::Platform
{
public:
    QLocale numberLocale() const override { return english(); }
};

// Amounts from 1e-7 to 1e9, either sign.
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

void BM_ValuePuts(benchmark::State &state)
{
    QLineEdit bare;
    zelkon::NumEdit edit;
    edit.setDigNum(2);
    const QLineEdit *shown = edit.findChild<QLineEdit *>(QStringLiteral("Text1"));
    Clock::duration bareTime{}, ours{};
    for (auto _ : state) {
        qsizetype total = 0;
        const auto t0 = Clock::now();
        for (double x : values()) {
            bare.setText(english().toString(x, 'f', 2));
            total += bare.text().size();
        }
        const auto t1 = Clock::now();
        for (double x : values()) {
            edit.setValue(x);
            total += shown->text().size();
        }
        const auto t2 = Clock::now();
        benchmark::DoNotOptimize(total);
        bareTime += t1 - t0;
        ours += t2 - t1;
    }
    state.SetItemsProcessed(state.iterations() * valueCount);
    zelkon::bench::report(state, "NumEdit Value puts vs QLocale::toString", bareTime, ours);
}

} // namespace

BENCHMARK(BM_ValuePuts)->Unit(benchmark::kMillisecond);

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    EnglishPlatform platform;
    zelkon::Platform::install(&platform);
    const int result = zelkon::bench::runAndPrintRatios(
        argc, argv, {{"NumEdit Value puts vs QLocale::toString", 1.5}});
    zelkon::Platform::install(nullptr);
    return result;
}
