#!/bin/sh
# Compares a program's manual page with what its --help lists: the options with their values, and each command with the
# options that it takes. The page must be without a warning, too.
#
#   manpagetest.sh PROGRAM PAGE
set -eu

program=$1
page=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

if ! mandoc -T lint -W warning "$page"; then
  echo "$page has the faults above."
  exit 1
fi

# Both become lines as "--lab FILE" and "list: --watch", without order.
"$program" --help >"$work/text"
awk '
  function option(line) {
    gsub(/[<>]/, "", line)
    match(line, /--[a-z-]+( [^ ]+)?( |$)/)
    line = substr(line, RSTART, RLENGTH)
    sub(/ $/, "", line)
    print line
  }
  /^  [a-z]+ --[a-z]+$/ || /^  (-[a-z], )?--[a-z]/ { sub(/  +[A-Z][a-z].*/, ""); option($0); next }
  /^  [a-z]+ [a-z-]+ / { command = $2; print command ":" }
  /^      [A-Z]/ { command = "" }
  command != "" { while (match($0, /--[a-z-]+/)) {
      print command ": " substr($0, RSTART, RLENGTH)
      $0 = substr($0, RSTART + RLENGTH) } }' "$work/text" | sort >"$work/help"
awk '
  /^\.Sh / { inOptions = $2 == "OPTIONS" }
  /^\.It / && inOptions {
    sub(/.*Fl -/, "--"); sub(/ Ar/, ""); gsub(/ \| /, "|")
    print
  }
  /^\.It Xo/ { inCommand = 1; command = ""; next }
  /^\.Xc/ { inCommand = 0 }
  inCommand && /^\.Ic / { command = $2; print command ":" }
  inCommand { while (match($0, /Fl -[a-z-]+/)) {
      print command ": -" substr($0, RSTART + 3, RLENGTH - 3)
      $0 = substr($0, RSTART + RLENGTH) } }' "$page" | sort >"$work/page"

if [ "$(wc -l <"$work/help")" -lt 5 ]; then
  echo "$program --help lists too little:"
  cat "$work/text"
  exit 1
fi
if ! diff "$work/help" "$work/page" >"$work/difference"; then
  echo "--help (<) and $page (>) list different things:"
  cat "$work/difference"
  exit 1
fi
