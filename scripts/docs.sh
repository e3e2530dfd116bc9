#!/usr/bin/env bash
# Writes the API documentation: docs.sh [FOLDER]; build/docs/html/index.html where no folder is given. Fails with Doxygen's words
# when it has a warning: a public name without a text, or a text that refers to what is not there.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)

"$root/scripts/setup.sh"
folder=$(realpath -m "${1:-$root/build/docs}")
mkdir -p "$folder"
cd "$root"
{
  cat docs/Doxyfile
  echo "OUTPUT_DIRECTORY = \"$folder\""
} | doxygen -
