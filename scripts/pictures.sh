#!/usr/bin/env bash
# Takes the documents' pictures anew, on the simulated cameras and without a display:
#   pictures.sh                     those that documents show, into docs/pictures
#   pictures.sh --output FOLDER     every window, light and dark, at scale 1 and 2, into a folder
set -euo pipefail
cd "$(dirname "$0")/.."

output=
if [ "${1-}" = --output ] && [ $# -eq 2 ]; then
  output=$2
elif [ $# -ne 0 ]; then
  echo "usage: $0 [--output FOLDER]" >&2
  exit 64
fi
scripts/setup.sh
scripts/build.sh release makepictures

taken=$(mktemp -d)
trap 'rm -rf "$taken"' EXIT
mkdir -m 0700 "$taken/home" "$taken/runtime"
# Settings of the user's, and what his desktop says of colours and sizes, show in no picture.
export HOME="$taken/home" XDG_RUNTIME_DIR="$taken/runtime" XDG_CONFIG_HOME="$taken/home/.config"
unset QT_QPA_PLATFORMTHEME QT_STYLE_OVERRIDE

# What the platform without a screen says that it lacks is nothing to look at.
run() {
  QT_LOGGING_RULES="qt.qpa.*=false" "$@" >"$taken/log" 2>&1 || {
    cat "$taken/log" >&2
    exit 1
  }
}

# take SCALE SUFFIX [dark]: all windows of the library and of the viewer.
take() {
  run env QT_QPA_PLATFORM=offscreen QT_SCALE_FACTOR="$1" \
    build/release/tests/pictures/makepictures "$taken/pictures" "$2" ${3:+"$3"}
}

take 1 ""
if [ -n "$output" ]; then
  take 1 -dark dark
  take 2 @2
  take 2 -dark@2 dark
  mkdir -p "$output"
  mv "$taken"/pictures/*.png "$output"
  exit 0
fi
# What no document shows is not kept.
while read -r name; do
  mv "$taken/pictures/$name" docs/pictures/
done < <(grep -ohE 'pictures/[a-z-]+\.png' README.md docs/*.md | sed 's/.*\///' | sort -u)
