#!/usr/bin/env bash
# Installs every Debian package that the project needs, and nothing else but those named: setup.sh [PACKAGE …].
# Quiet, and quick when all is there.
set -euo pipefail

packages=(
  # Building
  g++ cmake ninja-build pkg-config ccache mold
  # What the libraries stand on
  qt6-base-dev qt6-qpa-plugins libaravis-dev libnl-3-dev libnl-route-3-dev libusb-1.0-0-dev libspdlog-dev libpugixml-dev libyaml-cpp-dev
  libglib2.0-dev libzip-dev libxcb1-dev libxcb-shm0-dev libhwy-dev
  # What the programs stand on besides
  libpng-dev libtiff-dev
  # Tests: frameworks, an independent camera, USB devices, serial lines, a display with a window manager and hands, an
  # accessibility bus, network namespaces, packages and what is in them, documentation
  libgtest-dev libgmock-dev aravis-tools umockdev socat xvfb xauth openbox xdotool fonts-dejavu-core at-spi2-core dbus-bin dbus-daemon iproute2 util-linux
  dpkg-dev desktop-file-utils mandoc doxygen
  "$@"
)
missing=()
for package in "${packages[@]}"; do
  status=$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null || true)
  [ "$status" = installed ] || missing+=("$package")
done
[ ${#missing[@]} -gt 0 ] || exit 0

as_root=()
if [ "$(id -u)" -ne 0 ]; then
  if ! command -v sudo >/dev/null; then
    echo "setup: these packages are missing, and neither root nor sudo is there to install them: ${missing[*]}" >&2
    exit 1
  fi
  as_root=(sudo)
fi

echo "setup: installing ${missing[*]}"
log=$(mktemp)
trap 'rm -f "$log"' EXIT
install() {
  "${as_root[@]}" apt-get update &&
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends "${missing[@]}"
}
if ! install >"$log" 2>&1; then
  tail -n 30 "$log" >&2
  echo "setup: the packages could not be installed; what apt-get said stands above" >&2
  exit 1
fi
