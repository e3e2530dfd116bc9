#!/usr/bin/env bash
# Sets up, builds and makes the Debian packages, in build/packages.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh
scripts/build.sh release install_files
cpack --config build/release/CPackConfig.cmake -B build/packages
