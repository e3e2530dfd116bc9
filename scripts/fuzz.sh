#!/usr/bin/env bash
# Lets every parser of foreign bytes be searched for inputs that break it, or those that are named:
#   fuzz.sh [MINUTES] [TARGET …]      one minute for each target unless asked otherwise; names as in fuzz/
# As many at once as there are processors, each with the sanitizers of addresses and of undefined behaviour. What is
# found stays in build/fuzz/found, what was learnt in build/fuzz/corpus, with which the next run begins. Prints a line for
# each target:
#   target=<name> result=clean|FOUND executions=<number> seconds=<number> coverage=<number>
# and ends with 1 when anything was found.
set -euo pipefail
cd "$(dirname "$0")/.."

minutes=1
if [[ ${1:-} =~ ^[0-9]+$ ]]; then
  minutes=$1
  shift
fi
if [[ $minutes -eq 0 || ${1:-} == -* ]]; then
  echo "usage: $0 [MINUTES] [TARGET …]" >&2
  exit 64
fi

known=()
for folder in fuzz/seeds/*/; do
  known+=("$(basename "$folder")")
done
targets=("$@")
[ ${#targets[@]} -gt 0 ] || targets=("${known[@]}")
for name in "${targets[@]}"; do
  if [[ " ${known[*]} " != *" $name "* ]]; then
    echo "fuzz: there is no target $name; there are: ${known[*]}" >&2
    exit 64
  fi
done

scripts/setup.sh clang
scripts/build.sh fuzz "${targets[@]/#/fuzz_}"

folder=build/fuzz
search() {
  local name=$1 corpus=$folder/corpus/$1 found=$folder/found/$1 log=$folder/log/$1.txt result=clean
  mkdir -p "$corpus" "$found" "$folder/log"
  # A limit of memory for what an input can have allocated, and of time for what it can have computed.
  if ! "$folder/fuzz/fuzz_$name" -max_total_time=$((minutes * 60)) -timeout=60 -rss_limit_mb=4096 -print_final_stats=1 \
    -artifact_prefix="$found/" "$corpus" "fuzz/seeds/$name" >"$log" 2>&1; then
    result=FOUND
    tail -n 40 "$log" >&2
  fi
  local executions seconds coverage
  executions=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
  seconds=$(sed -n 's/^Done [0-9]* runs in \([0-9]*\) second.*/\1/p' "$log")
  coverage=$(sed -n 's/.* cov: \([0-9]*\).*/\1/p' "$log" | tail -n 1)
  echo "target=$name result=$result executions=${executions:-?} seconds=${seconds:-?} coverage=${coverage:-?}"
  [ "$result" = clean ]
}
export -f search
export folder minutes UBSAN_OPTIONS=print_stacktrace=1
printf '%s\n' "${targets[@]}" | xargs -P "$(nproc)" -I NAME bash -c 'search NAME'
