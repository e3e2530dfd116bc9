#!/bin/sh
# Empties a folder, or makes it, and runs a program: what an earlier run left there is not read. Arguments and the exit
# status are passed through. The words of KR_TEST_RUNNER, if there are any, are what runs it (scripts/valgrind.sh).
#
#   scripts/with-empty-folder.sh FOLDER PROGRAM [ARGUMENT...]
set -u

if [ $# -lt 2 ]; then
  echo "usage: $0 FOLDER PROGRAM [ARGUMENT...]" >&2
  exit 64
fi
folder=$1
shift
case $folder in
  */test-settings/?*) ;;
  *)
    echo "$0: '$folder' is no folder below test-settings, and is not emptied." >&2
    exit 64
    ;;
esac
rm -rf -- "$folder" && mkdir -p -- "$folder/config" "$folder/data" || exit 73
export KR_TEST_NAME="${folder##*/}.$$" # By which the runner calls what it writes; the process is the program's, too.
# shellcheck disable=SC2086 # Several words.
exec ${KR_TEST_RUNNER:-} "$@"
