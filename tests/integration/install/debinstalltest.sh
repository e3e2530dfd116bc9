#!/usr/bin/env bash
# Installs the Debian packages in a folder as root does, starts the programs, and removes them again:
#   debinstalltest.sh PACKAGES WORK_FOLDER WITH_DISPLAY
# The machine is not touched: in a mount namespace of its own, /usr, /var and /etc are layers over the machine's, kept in memory
# and gone with this script. Packages with files elsewhere, or scripts that do more than to have the linker look again, are refused, as
# those could reach further.
# Wants to be root, and a kernel with overlayfs.
set -euo pipefail

if [ "${1-}" != --inside ]; then
  exec unshare --mount --net "$0" --inside "$@"
fi
packages=$2
work=$3
with_display=$4

fail() {
  echo "debinstalltest: $*" >&2
  exit 1
}

files=("$packages"/krgui_*.deb "$packages"/libkrgui-dev_*.deb)
[ ${#files[@]} -eq 2 ] && [ -f "${files[0]}" ] && [ -f "${files[1]}" ] || fail "there are no two packages in $packages."
# What the packages' scripts may have: comments, conditions on why they are called, and the linker's cache.
known_line='^[[:space:]]*(#.*|set -e|if \[ "\$1" = "[a-z]+" \]; then|fi|ldconfig)?[[:space:]]*$'
for file in "${files[@]}"; do
  for script in $(dpkg-deb --ctrl-tarfile "$file" | tar --list | grep -E '/((pre|post)(inst|rm)|config)$'); do
    unknown=$(dpkg-deb --ctrl-tarfile "$file" | tar --extract --to-stdout "$script" | grep -vE "$known_line" || true)
    [ -z "$unknown" ] || fail "$script of $file does what is not known here: $unknown"
  done
  elsewhere=$(dpkg-deb --fsys-tarfile "$file" | tar --list | grep -vE '^\./(usr/.*)?$' || true)
  [ -z "$elsewhere" ] || fail "$file has files outside of /usr: $elsewhere"
done

rm -rf "$work"
mkdir -p "$work/layers" "$work/home"
mount --make-rprivate /
mount -t tmpfs layers "$work/layers"
for folder in usr var etc; do
  mkdir "$work/layers/$folder" "$work/layers/$folder-work"
  mount -t overlay "$folder" -o "lowerdir=/$folder,upperdir=$work/layers/$folder,workdir=$work/layers/$folder-work" "/$folder"
  touch "/$folder/of-the-layer"
  [ -f "$work/layers/$folder/of-the-layer" ] || fail "/$folder is not the layer's."
  rm "/$folder/of-the-layer"
done
ip link set lo up
export PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME="$work/home" DEBIAN_FRONTEND=noninteractive
unset LD_LIBRARY_PATH

# Fails where a package that one of them depends on is not installed.
dpkg --install "${files[@]}"
for package in krgui libkrgui-dev; do
  [ "$(dpkg-query --show --showformat='${db:Status-Status}' "$package")" = installed ] || fail "$package is not installed."
  found=$(dpkg --verify "$package")
  [ -z "$found" ] || fail "what was installed of $package is not what was packed: $found"
done
mapfile -t installed < <(dpkg --listfiles krgui libkrgui-dev | sort -u | while read -r path; do
  [ -z "$path" ] || [ -d "$path" ] || echo "$path"
done)
[ ${#installed[@]} -ge 20 ] || fail "only ${#installed[@]} files were installed."

for program in krtool krviewer; do
  [ "$(command -v "$program")" = "/usr/bin/$program" ] || fail "$program is not among the commands."
done
krtool list --simulate | grep -q sim-mono || fail "krtool does not list the simulated camera."
"$with_display" krviewer --simulate --frames 20 --screenshot "$work/pictures" sim-mono
[ -s "$work/pictures/display.png" ] || fail "krviewer left no picture."

dpkg --purge libkrgui-dev krgui
for path in "${installed[@]}"; do
  [ ! -e "$path" ] || fail "$path is still there after the packages were removed."
done
echo "Installed, started and removed: ${#installed[@]} files."
