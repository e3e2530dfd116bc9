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
# A figure that has several peers is one row, in which they follow one another.
function add(row, column, text) { cells[row, column] = cells[row, column] (cells[row, column] == "" ? "" : "; ") text }
function add_line(row,  value, limit) {
  value = field["value"] " " field["unit"]
  if (value != last_value[row]) add(row, 2, value)
  last_value[row] = value
  if ("peer" in field) { add(row, 3, beside("peer")); add(row, 4, field["ratio"]) }
  limit = beside("limit")
  if (limit != last_limit[row]) { add(row, 5, limit); add(row, 6, field["limit_ratio"]) }
  last_limit[row] = limit
}
function print_table(  row, column, line) {
  if (!count) return
  if (tables++) print ""
  if (benchmark != "") printf "`%s`:\n\n", benchmark # Lines of a benchmark that was run without bench.sh have none.
  print "| figure | ours | peer | of the peer | limit | of the limit |"
  print "|---|---|---|---|---|---|"
  for (row = 1; row <= count; ++row) {
    line = "|"
    for (column = 1; column <= 6; ++column) line = line " " cells[row, column] " |"
    print line
  }
  count = 0
  delete row_of; delete cells; delete last_value; delete last_limit
}
/^# [a-z]+$/ { print_table(); benchmark = $2; next }
/^figure=/ {
  if (!take()) { print "figures: this is no figure: " $0 > "/dev/stderr"; failed = 1; exit 1 }
  ++rows
  if (!(field["figure"] in row_of)) { row_of[field["figure"]] = ++count; cells[count, 1] = field["figure"] }
  add_line(row_of[field["figure"]])
}
END {
  if (failed) exit 1
  if (!rows) { print "figures: there is no figure" > "/dev/stderr"; exit 1 }
  print_table()
}' "$@"
