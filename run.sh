#!/usr/bin/env bash
# Sets up, builds and starts the viewer with the simulated cameras beside whatever real ones are found.
# Without a display it runs the same headless and leaves pictures in pictures/. Arguments go to krviewer.
set -euo pipefail
cd "$(dirname "$0")"

scripts/setup.sh
scripts/build.sh release krviewer krtool
build/release/apps/krtool/krtool list --simulate
exec build/release/apps/krviewer/krviewer --simulate "$@"
