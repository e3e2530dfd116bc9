#!/usr/bin/env bash
# Runs a program under an X server and a window manager of its own and passes its exit code through:
#   scripts/with-display.sh [--without-window-manager] program [argument …]
# Several may run at once, also in network namespaces of their own (scripts/with-network.sh): each has a display number that
# no other has. Nothing that this script has not started is touched.
set -euo pipefail

has_manager=yes
if [ "${1-}" = --without-window-manager ]; then
  has_manager=
  shift
fi
if [ $# -eq 0 ]; then
  echo "usage: $0 [--without-window-manager] program [argument …]" >&2
  exit 64
fi

runtime=$(mktemp -d)
chmod 0700 "$runtime"
server=
manager=
program=

# Ends a process of ours and waits for it; one that has ended already is as well.
end() {
  if [ -n "$1" ]; then
    kill "$1" 2>/dev/null || true
    wait "$1" 2>/dev/null || true
  fi
}

clean_up() {
  trap - EXIT INT TERM HUP
  end "$program"
  end "$manager"
  end "$server"
  rm -rf "$runtime"
}
trap clean_up EXIT
trap 'exit 130' INT
trap 'exit 143' TERM
trap 'exit 129' HUP

# Reads the line that a starting program writes into a pipe when it is ready, or gives up with that program's own words.
# A program that fails because one of these has ended is not to be searched for the fault.
tell_end() {
  if [ -n "$1" ] && ! kill -0 "$1" 2>/dev/null; then
    echo "$0: $2 has ended before the program did:" >&2
    cat "$runtime/$2.log" >&2
  fi
}

# The server and the window manager are given a limit, so that a test never hangs on them.
await() {
  local line
  if ! read -r -t 120 line <&"$1"; then
    echo "$0: $2 did not start:" >&2
    cat "$runtime/$3.log" >&2
    exit 70
  fi
  printf '%s\n' "$line"
}

mkfifo "$runtime/server" "$runtime/manager"
# Opened for both directions, so that opening does not wait for the other side.
exec 8<>"$runtime/server" 9<>"$runtime/manager"

# Left to itself a server takes the first number whose abstract socket is free, which in another network namespace is one
# that is taken here; its socket file then takes the place of the other's, and programs reach the wrong server. So the
# number is chosen here, by the files, which all namespaces share, one script at a time. Who starts servers without this
# script begins at 0.
sockets=/tmp/.X11-unix
mkdir -m 1777 "$sockets" 2>/dev/null || true
exec 7<"$sockets"
if ! flock -w 600 7; then
  echo "$0: others have been choosing a display number for too long." >&2
  exit 70
fi
number=1000
while [ -e "$sockets/X$number" ]; do
  number=$((number + 1))
done
# A key repeats itself when it is really held, not when who types it has to wait for a processor.
Xvfb ":$number" -displayfd 8 -screen 0 2400x1600x24 -nolisten tcp -noreset -ardelay 3000 >"$runtime/Xvfb.log" 2>&1 7<&- 9>&- &
server=$!
await 8 Xvfb Xvfb >/dev/null
exec 7<&- # The number is taken: its socket file exists.
export DISPLAY=":$number"
export XDG_RUNTIME_DIR="$runtime"
# What the user has set is neither read nor changed.
export XDG_CONFIG_HOME="$runtime/config"
export QT_QPA_PLATFORM=xcb
# The first key that is typed from outside gives the server another keyboard map, at which a window manager takes its keys
# anew: one that comes meanwhile is lost. So it is typed before there is one.
if command -v xdotool >/dev/null; then
  xdotool key Shift_L
fi
# No bus of the user's session, no accessibility bus, no desktop's style, no scaling.
unset DBUS_SESSION_BUS_ADDRESS WAYLAND_DISPLAY QT_QPA_PLATFORMTHEME QT_STYLE_OVERRIDE QT_SCALE_FACTOR XDG_SESSION_TYPE
export NO_AT_BRIDGE=1

if [ -n "$has_manager" ]; then
  openbox --sm-disable --startup "sh -c 'echo ready >\"$runtime/manager\"'" >"$runtime/openbox.log" 2>&1 8>&- 9>&- &
  manager=$!
  await 9 openbox openbox >/dev/null
fi
exec 8>&- 9>&-

# In the background, as a signal that comes meanwhile is else only heard when the program has ended.
"$@" <&0 &
program=$!
status=0
wait "$program" || status=$?
program=
if [ "$status" -ne 0 ]; then
  tell_end "$server" Xvfb
  tell_end "$manager" openbox
fi
exit "$status"
