#!/usr/bin/env bash
# Runs tests under valgrind's memory checker:
#   valgrind.sh [REGEX]            the unit tests, where REGEX chooses tests by name, as ctest's -R does
#   valgrind.sh --windows [REGEX]  those with the toolkit and no display, which valgrind sees whole as no sanitizer does
# Ends with 1 when a test fails or uses memory wrongly; a unit test also when it leaks, as the toolkit keeps what it has.
# What was found is printed; the programs are those of test.sh.
set -euo pipefail
cd "$(dirname "$0")/.."

kind=unit
leaks=(--leak-check=full --show-leak-kinds=definite)
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
logs=$folder/valgrind
rm -rf "$logs"
mkdir "$logs"

# What cannot hold under the checker: it knows neither descriptors of processes nor the calls by which a test makes a disk
# that hangs, and starts a program by a fork whatever is asked for.
GTEST_FILTER="-CLProtocolTest.WithoutTheProgramForDrivers_TheMessageSaysOnceHowItIsFound"
GTEST_FILTER+=":ChildProcessTest.OfASessionOfItsOwn_IsEndedByDisconnect"
GTEST_FILTER+=":RecordingOnAHangingDisk.*:SetupFiles.DiskThat*:SetupFiles.LeftWhileItIsWritten_*"
export GTEST_FILTER
export QT_ENABLE_REGEXP_JIT=0 # Nor can it judge what is compiled as it runs.

# A test's own program alone: not the script around it, nor what it starts besides. The documentation's test is a script.
# Some bring an operator new of their own, which is theirs to have; some have a thread that only rests by waiting for
# another one, which the checker runs in its turn where it is told to.
chosen=(--test-dir "$folder" --label-regex "^$kind\$" --exclude-regex '^unit\.apidocumentation$' ${1:+--tests-regex "$1"})
KR_TEST_RUNNER="valgrind ${leaks[*]} --errors-for-leak-kinds=none --error-exitcode=99 --num-callers=40 --fair-sched=yes"
KR_TEST_RUNNER+=" --soname-synonyms=somalloc=nouserintercepts --suppressions=$PWD/tests/suppressions/valgrind.supp"
export KR_TEST_RUNNER+=" --log-file=$logs/%q{KR_TEST_NAME}.%p.txt"
status=0
ctest "${chosen[@]}" --output-on-failure --no-tests=error --parallel "$(nproc)" || status=1
# A process that was forked of a test's has lost what its other threads had: that counts in the test's own alone.
wrong=$(grep -lE 'ERROR SUMMARY: [^0]' "$logs"/*.txt || true)
lost=$(grep -lE 'definitely lost: [^0]' "$logs"/*.txt | grep -E '\.([0-9]+)\.\1\.txt$' || true)
for log in $(printf '%s\n' $wrong $lost | sort -u); do
  cat "$log" >&2
  status=1
done
# What was not looked at must not pass for clean.
wanted=$(ctest "${chosen[@]}" -N | grep -c '^ *Test *#')
seen=$(find "$logs" -name '*.txt' | sed -E 's/.*\/(.*)\.[0-9]+\.[0-9]+\.txt/\1/' | sort -u | wc -l)
if [ "$seen" -lt "$wanted" ]; then
  echo "valgrind: $seen of $wanted tests were looked at" >&2
  status=1
fi
exit "$status"
