#!/usr/bin/env bash
# Turns what scripts/bench.sh printed into tables for docs/performance.md, one for each benchmark:
#   scripts/bench.sh finder >lines; scripts/figures.sh lines      also from its standard input
# Ends with 1 where a line that begins as a figure is none, or no figure came.
set -euo pipefail

exec awk '
# The fields of a figure, by their names.
function take(  i, sign) {
  delete field
  for (i = 1; i <= NF; ++i) {
    sign = index($i, "=")
    if (sign < 2) return 0
    field[substr($i, 1, sign - 1)] = substr($i, sign + 1)
  }
  return ("figure" in field) && ("value" in field) && ("unit" in field)
}
# "17 ms, empty dialog"; nothing where there is no such field.
function beside(kind,  name) {
  if (!(kind in field)) return ""
  name = field[kind]
  gsub(/_/, " ", name)
  return field[kind "_value"] " " field["unit"] ", " name
}
function begin(name) {
  if (tables++) print ""
  if (name != "") printf "`%s`:\n\n", name # Lines of a benchmark that was run without bench.sh have none.
  print "| figure | ours | peer | of the peer | limit | of the limit |"
  print "|---|---|---|---|---|---|"
}
/^# [a-z]+$/ { benchmark = $2; next }
/^figure=/ {
  if (!take()) { print "figures: this is no figure: " $0 > "/dev/stderr"; failed = 1; exit 1 }
  if (!tables || benchmark != begun) { begin(benchmark); begun = benchmark }
  printf "| %s | %s %s | %s | %s | %s | %s |\n", field["figure"], field["value"], field["unit"],
    beside("peer"), field["ratio"], beside("limit"), field["limit_ratio"]
  ++rows
}
END {
  if (!failed && !rows) { print "figures: there is no figure" > "/dev/stderr"; exit 1 }
}' "$@"
