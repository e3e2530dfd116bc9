#!/usr/bin/env bash
# Runs the unit tests under valgrind's memory checker: valgrind.sh [REGEX], where REGEX chooses tests by name, as ctest's -R does.
# Ends with 1 when a test fails, uses memory wrongly or leaks it. What was found is printed; the programs are those of test.sh.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh valgrind
scripts/build.sh release
folder=$PWD/build/release
logs=$folder/Testing/Temporary
rm -f "$logs"/MemoryChecker.*.log

# What a test starts besides itself is not looked at. The documentation's test is a script.
options=(
  --leak-check=full --show-leak-kinds=definite --errors-for-leak-kinds=definite --error-exitcode=99 --num-callers=40
  "--suppressions=$PWD/tests/suppressions/valgrind.supp"
)
status=0
ctest --test-dir "$folder" --test-action memcheck --label-regex '^unit$' --exclude-regex '^unit\.apidocumentation$' \
  --no-tests=error --parallel "$(nproc)" ${1:+--tests-regex "$1"} --overwrite MemoryCheckCommand="$(command -v valgrind)" \
  --overwrite MemoryCheckCommandOptions="${options[*]}" || status=1
for log in $(grep -lE 'ERROR SUMMARY: [^0]' "$logs"/MemoryChecker.*.log || true); do
  cat "$log" >&2
  status=1
done
exit "$status"
