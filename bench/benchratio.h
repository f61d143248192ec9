// Shared by the benchmarks: each measures Zelkon against a bare baseline in the same run and
// reports the ratio, as a counter and as a closing line per comparison.
#pragma once

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <map>
#include <string>

namespace zelkon::bench {

using Clock = std::chrono::steady_clock;

inline std::map<std::string, double> &ratios()
{
    static std::map<std::string, double> r;
    return r;
}

inline void report(benchmark::State &state, const char *name, Clock::duration bare,
                   Clock::duration ours)
{
    const double ratio = std::chrono::duration<double>(ours) / std::chrono::duration<double>(bare);
    const double n = double(state.iterations());
    state.counters["ratio"] = ratio;
    state.counters["bare_ms"] = std::chrono::duration<double, std::milli>(bare).count() / n;
    state.counters["zelkon_ms"] = std::chrono::duration<double, std::milli>(ours).count() / n;
    ratios()[name] = ratio;
}

// Runs the registered benchmarks, then prints every ratio with its target.
inline int runAndPrintRatios(int argc, char **argv, const std::map<std::string, double> &targets)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    for (const auto &[name, ratio] : ratios()) {
        const auto target = targets.find(name);
        std::printf("%-45s ratio %.3f (target <= %.1f)\n", name.c_str(), ratio,
                    target == targets.end() ? 0.0 : target->second);
    }
    return 0;
}

} // namespace zelkon::bench
