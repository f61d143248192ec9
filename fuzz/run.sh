#!/usr/bin/env bash
# Runs every libFuzzer target of a fuzz build for a bounded time each, starting from its corpus in
# fuzz/corpus/<target>. New inputs found along the way stay in the build directory; an input that
# found a fault is copied into the corpus (so that the replay test keeps running it) and the run
# fails.
set -uo pipefail
build=${1:-build-fuzz}
seconds=${2:-60}
# A fixed seed walks the same inputs on every run, so a red CI is a fault that shows again, not
# luck; set FUZZ_SEED=0 for a random walk when hunting.
seed=${FUZZ_SEED:-1}
here=$(cd "$(dirname "$0")/.." && pwd)
export QT_QPA_PLATFORM=offscreen
export ASAN_OPTIONS=${ASAN_OPTIONS:-detect_leaks=1:abort_on_error=1}
export LSAN_OPTIONS=${LSAN_OPTIONS:-suppressions=$here/scripts/lsan.supp:print_suppressions=0}
export UBSAN_OPTIONS=${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}

failed=0
for binary in "$build"/fuzz/fuzz_*; do
    [ -x "$binary" ] && [ -f "$binary" ] || continue
    name=$(basename "$binary")
    target=${name#fuzz_}
    seeds="$here/fuzz/corpus/$target"
    work="$build/fuzz/corpus-$target"
    artifacts="$build/fuzz/artifacts-$target"
    mkdir -p "$work" "$artifacts"
    echo "== $name: ${seconds}s"
    if ! "$binary" -seed="$seed" -max_total_time="$seconds" -timeout=30 -rss_limit_mb=4096 \
        -print_final_stats=1 -artifact_prefix="$artifacts/" "$work" "$seeds" \
        >"$build/fuzz/$name.log" 2>&1; then
        failed=1
        tail -n 60 "$build/fuzz/$name.log"
        for input in "$artifacts"/*; do
            [ -f "$input" ] || continue
            cp "$input" "$seeds/found-$(basename "$input")"
            echo "$name: the input that found the fault is now $seeds/found-$(basename "$input")"
        done
    fi
    grep -E '^stat::number_of_executed_units|^Done [0-9]+ runs' "$build/fuzz/$name.log" || true
done
exit $failed
