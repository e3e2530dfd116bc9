#!/usr/bin/env bash
# Sets up, builds and runs all tests: test.sh [asan|tsan]. Arguments after the first go to ctest.
set -euo pipefail
cd "$(dirname "$0")"

preset=release
case "${1:-}" in
  asan | tsan)
    preset=$1
    shift
    ;;
esac

scripts/setup.sh
scripts/build.sh "$preset"

export ASAN_OPTIONS=detect_leaks=1:abort_on_error=0
export UBSAN_OPTIONS=print_stacktrace=1
# Most tests wait more than they compute.
exec ctest --test-dir "build/$preset" --output-on-failure --no-tests=error --parallel "$(($(nproc) * 3 / 2))" "$@"
