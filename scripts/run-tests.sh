#!/usr/bin/env bash
# Runs the test suite of a build directory with ctest. The database tests also run against a
# PostgreSQL server: ZELKON_TEST_PG names one, or a private one is started on 127.0.0.1.
set -euo pipefail
build=${1:-build}
jobs=${2:-2}
here=$(cd "$(dirname "$0")/.." && pwd)

if [ -z "${ZELKON_TEST_PG:-}" ] && [ -x "$here/tests/data/postgres-server.sh" ]; then
    if line=$("$here/tests/data/postgres-server.sh" | grep '^ZELKON_TEST_PG='); then
        export ZELKON_TEST_PG="${line#ZELKON_TEST_PG=}"
    else
        echo "run-tests: no PostgreSQL server could be started" >&2
        [ "${CI:-}" = "true" ] && exit 1
    fi
fi
export ASAN_OPTIONS=${ASAN_OPTIONS:-detect_leaks=1:abort_on_error=1}
export LSAN_OPTIONS=${LSAN_OPTIONS:-suppressions=$here/scripts/lsan.supp:print_suppressions=0}
export UBSAN_OPTIONS=${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}
cd "$build"
ctest --output-on-failure -j"$jobs"
