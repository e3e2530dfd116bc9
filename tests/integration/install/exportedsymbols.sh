#!/bin/sh
# Compares what shared libraries show with the public headers: each symbol is of a class, or a function, that they mark with
# KR_EXPORT, and of nothing nested in it that stands behind it.
#
#   exportedsymbols.sh NM INCLUDE_FOLDER LIBRARY...
#
# Names each symbol that is not, on standard output, and fails; else says how many there are.
set -eu

nm=$1
headers=$2
shift 2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# A name a line, with its namespace. What begins and ends in lines without blanks before is a namespace or in one.
find "$headers" -name '*.h' -exec cat {} + | awk '
  /^\/\// { next }
  /^namespace [A-Za-z]+ \{$/ { space = $2 "::"; next }
  /^}/ { if (!inside) space = ""; inside = 0 }
  /^[^ ].*\{$/ { inside = 1 }
  /^#/ || !/KR_EXPORT/ { next }
  /^(class|struct) / { sub(/.*KR_EXPORT /, ""); sub(/[^A-Za-z0-9_].*/, ""); print space $0; next }
  /^KR_EXPORT .*\(/ { sub(/\(.*/, ""); sub(/.*[ *&]/, ""); print space $0 }' | sort -u >"$work/public"

for library in "$@"; do
  "$nm" --dynamic --defined-only --format=posix --demangle "$library" >"$work/symbols"
  if ! [ -s "$work/symbols" ]; then
    echo "$library shows nothing."
    exit 1
  fi
  # What a line of the linker says of a symbol follows its name, which may have blanks.
  sed -E 's/ [A-Za-z]( [0-9a-f]+)*$//' "$work/symbols" | awk -v library="$(basename "$library")" '
    FILENAME != "-" { public[$0]; next }
    {
      whole = $0
      sub(/^(vtable|VTT|typeinfo name|typeinfo) for |^(non-)?virtual thunk to /, "")
      sub(/\[abi:[a-z0-9]+\]/, "")
      sub(/\(.*/, "")
      count = split($0, part, "::")
      name = part[1]
      if (!(name in public) && count > 1)
        name = part[1] "::" part[2]
      if (!(name in public) || /(^|::)Body(::|$)/) {
        print library ": " whole
        foreign = 1
      }
    }
    END { exit foreign }' "$work/public" - >>"$work/foreign" || failed=1
done
if [ -n "${failed:-}" ]; then
  cat "$work/foreign"
  exit 1
fi
echo "All symbols belong to one of $(wc -l <"$work/public") public names."
