#!/bin/sh
# Runs a program in a network namespace of its own, with the loopback adapter up: UDP port 3956 is free there, packet
# sockets are allowed, and nothing reaches the machine's real network. Arguments and the exit status are passed through.
#
#   scripts/with-network.sh PROGRAM [ARGUMENT...]
#
# Works for root, and for others where the kernel lets everybody make user namespaces. Needs the Debian packages
# util-linux (unshare) and iproute2 (ip).
set -u

if [ $# -eq 0 ]; then
  echo "usage: $0 PROGRAM [ARGUMENT...]" >&2
  exit 64
fi
PATH="$PATH:/usr/sbin:/sbin"
for tool in unshare ip; do
  if ! command -v "$tool" >/dev/null 2>&1; then
    echo "$0: '$tool' is missing; install the packages util-linux and iproute2." >&2
    exit 69
  fi
done

inside='ip link set lo up || { echo "with-network.sh: the loopback adapter could not be switched on." >&2; exit 69; }
exec "$@"'

if unshare --user --map-root-user --net true 2>/dev/null; then
  exec unshare --user --map-root-user --net sh -c "$inside" sh "$@"
fi
if [ "$(id -u)" -eq 0 ] && unshare --net true 2>/dev/null; then
  exec unshare --net sh -c "$inside" sh "$@"
fi
echo "$0: neither a user namespace nor, as root, a network namespace can be made here." >&2
echo "Run as root, or allow user namespaces: sysctl -w kernel.unprivileged_userns_clone=1" >&2
exit 69
