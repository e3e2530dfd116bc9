#!/usr/bin/env bash
# Lets a part of the system run at random for a while and ends with 1 when something fails or grows:
#   soak.sh NAME [MINUTES] [PRESET]      ten minutes and the preset release, unless asked otherwise; asan and tsan too
# NAME is display.
set -euo pipefail
cd "$(dirname "$0")/.."

name=${1:-}
minutes=${2:-10}
preset=${3:-release}
if [ "$name" != display ] || ! [[ $minutes =~ ^[1-9][0-9]*$ ]]; then
  echo "usage: $0 display [MINUTES] [PRESET]" >&2
  exit 64
fi

scripts/setup.sh
scripts/build.sh "$preset" "${name}soak"
suppressions=$PWD/tests/suppressions
export LSAN_OPTIONS="suppressions=$suppressions/lsan.supp:print_suppressions=0"
export TSAN_OPTIONS="suppressions=$suppressions/tsan.supp:ignore_noninstrumented_modules=1"
export UBSAN_OPTIONS=print_stacktrace=1
exec scripts/with-display.sh "build/$preset/tests/soak/${name}soak" --minutes "$minutes"
