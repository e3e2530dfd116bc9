#!/usr/bin/env bash
# Configures and builds one preset: build.sh PRESET [TARGET …]. Prints what failed, or nothing.
set -euo pipefail
cd "$(dirname "$0")/.."

preset=$1
shift
log=$(mktemp)
trap 'rm -f "$log"' EXIT
if ! cmake --preset "$preset" >"$log" 2>&1; then
  cat "$log" >&2
  exit 1
fi
echo "Building ($preset) …"
if ! cmake --build --preset "$preset" ${1:+--target "$@"} >"$log" 2>&1; then
  grep -vE '^\[[0-9]+/[0-9]+\] ' "$log" | tail -n 100 >&2
  exit 1
fi
