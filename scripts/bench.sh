#!/usr/bin/env bash
# Runs the benchmarks, all or one: bench.sh [NAME]. Sets up, builds for release, prints "# <benchmark>" before each, and
# a line for each figure:
#   figure=<name> value=<number> unit=<unit> [peer=<name> peer_value=<number> ratio=<number>]
#     [limit=<name> limit_value=<number> limit_ratio=<number>]
# A peer did the same in the same run; a limit is a constant. Ratios are those of the value, and are not there where it
# is held against 0. scripts/figures.sh makes tables of the lines. Ends with 1, once all were run, where one could not
# measure all that it is for.
set -euo pipefail
cd "$(dirname "$0")/.."

# The peers, which nothing but the benchmarks uses.
peers=(
  libopencv-dev libyuv-dev
  libgstreamer1.0-dev libgstreamer-plugins-base1.0-dev gstreamer1.0-plugins-base gstreamer1.0-plugins-good
  gstreamer1.0-plugins-bad gstreamer1.0-x gstreamer1.0-gtk3
)
scripts/setup.sh "${peers[@]}"
scripts/build.sh release benchmarks/all
found=0
failed=()
for program in build/release/benchmarks/bench_*; do
  [ -x "$program" ] && [ -f "$program" ] || continue
  name=$(basename "$program")
  name=${name#bench_}
  [ -z "${1:-}" ] || [ "$1" = "$name" ] || continue
  found=1
  echo "# $name"
  case $name in
    browser | display | windows) scripts/with-display.sh "$program" ;;
    finder | viewer) scripts/with-network.sh scripts/with-display.sh "$program" ;;
    stream) scripts/with-network.sh "$program" ;;
    terminal) QT_QPA_PLATFORM=offscreen "$program" ;;
    *) "$program" ;;
  esac || failed+=("$name")
done
if [ "$found" = 0 ]; then
  echo "bench: there is no benchmark ${1:-at all}; see benchmarks/CMakeLists.txt" >&2
  exit 1
fi
if [ ${#failed[@]} -gt 0 ]; then
  echo "bench: not all could be measured by ${failed[*]}" >&2
  exit 1
fi
