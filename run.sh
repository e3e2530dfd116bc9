#!/usr/bin/env bash
# Sets up, builds and starts the viewer, which lets its user pick a camera: a real one or a simulated one.
# Without a display it runs the same headless and leaves pictures in pictures/. Arguments go to krviewer.
set -euo pipefail
root=$(cd "$(dirname "$0")" && pwd)

"$root/scripts/setup.sh"
"$root/scripts/build.sh" release krviewer krtool
"$root/build/release/apps/krtool/krtool" list --simulate
exec "$root/build/release/apps/krviewer/krviewer" --simulate "$@"
