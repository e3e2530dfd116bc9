#!/usr/bin/env bash
# Runs tests under valgrind's memory checker:
#   valgrind.sh [REGEX]            the unit tests, where REGEX chooses tests by name, as ctest's -R does
#   valgrind.sh --windows [REGEX]  those with the toolkit and no display, which valgrind sees whole as no sanitizer does
# Ends with 1 when a test fails or uses memory wrongly; a unit test also when it leaks, as the toolkit keeps what it has.
# What was found is printed; the programs are those of test.sh.
set -euo pipefail
cd "$(dirname "$0")/.."

kind=unit
leaks=(--leak-check=full --show-leak-kinds=definite --errors-for-leak-kinds=definite)
if [ "${1:-}" = --windows ]; then
  kind=widget
  leaks=(--leak-check=no)
  shift
fi
if [ $# -gt 1 ] || [[ ${1:-} == -* ]]; then
  echo "usage: $0 [--windows] [REGEX]" >&2
  exit 64
fi

scripts/setup.sh valgrind
scripts/build.sh release
folder=$PWD/build/release
logs=$folder/Testing/Temporary
rm -f "$logs"/MemoryChecker.*.log

# What a test starts besides itself is not looked at. The documentation's test is a script.
options=(
  "${leaks[@]}" --error-exitcode=99 --num-callers=40 "--suppressions=$PWD/tests/suppressions/valgrind.supp"
)
status=0
ctest --test-dir "$folder" --test-action memcheck --label-regex "^$kind\$" --exclude-regex '^unit\.apidocumentation$' \
  --no-tests=error --parallel "$(nproc)" ${1:+--tests-regex "$1"} --overwrite MemoryCheckCommand="$(command -v valgrind)" \
  --overwrite MemoryCheckCommandOptions="${options[*]}" || status=1
for log in $(grep -lE 'ERROR SUMMARY: [^0]' "$logs"/MemoryChecker.*.log || true); do
  cat "$log" >&2
  status=1
done
exit "$status"
