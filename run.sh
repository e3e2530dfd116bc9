#!/usr/bin/env bash
# Sets up, builds and starts the viewer with the simulated cameras beside whatever real ones are found.
# Without a display it runs the same headless and leaves pictures in pictures/. Arguments go to krviewer.
set -euo pipefail
root=$(cd "$(dirname "$0")" && pwd)

"$root/scripts/setup.sh"
"$root/scripts/build.sh" release krviewer krtool
"$root/build/release/apps/krtool/krtool" list --simulate
exec "$root/build/release/apps/krviewer/krviewer" --simulate "$@"
