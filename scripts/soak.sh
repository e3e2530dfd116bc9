#!/usr/bin/env bash
# Lets the system, or a part of it, run at random for a while and ends with 1 when something fails, hangs or grows:
#   soak.sh [MINUTES] [PRESET]           all windows at once on the simulated lab
#   soak.sh display [MINUTES] [PRESET]   one display
# Ten minutes and the preset release, unless asked otherwise; asan and tsan too. SOAK_SEED=N has chance begin as in a
# run of all windows that printed that seed.
set -euo pipefail
cd "$(dirname "$0")/.."

name=whole
if [ "${1:-}" = display ]; then
  name=display
  shift
fi
minutes=${1:-10}
preset=${2:-release}
if [ $# -gt 2 ] || ! [[ $minutes =~ ^[1-9][0-9]*$ ]]; then
  echo "usage: $0 [display] [MINUTES] [PRESET]" >&2
  exit 64
fi

scripts/setup.sh
scripts/build.sh "$preset" "${name}soak"
suppressions=$PWD/tests/suppressions
export LSAN_OPTIONS="suppressions=$suppressions/lsan.supp:print_suppressions=0"
export TSAN_OPTIONS="suppressions=$suppressions/tsan.supp:ignore_noninstrumented_modules=1"
export UBSAN_OPTIONS=print_stacktrace=1
options=(--minutes "$minutes")
if [ "$name" = whole ] && [ -n "${SOAK_SEED:-}" ]; then
  options+=(--seed "$SOAK_SEED")
fi
exec scripts/with-display.sh "build/$preset/tests/soak/${name}soak" "${options[@]}"
