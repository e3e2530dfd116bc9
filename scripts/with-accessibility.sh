#!/usr/bin/env bash
# Runs a program as if assistive technology were listening, on buses of its own that end with it, and passes its exit code
# through; needs a display around it:
#   scripts/with-display.sh scripts/with-accessibility.sh program [argument …]
set -euo pipefail

if [ $# -eq 0 ]; then
  echo "usage: $0 program [argument …]" >&2
  exit 64
fi

export QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1
# Asking for the bus starts it. What the buses say of themselves is told only when they fail.
exec dbus-run-session -- bash -c '
  if ! answer=$(dbus-send --session --print-reply --reply-timeout=120000 --dest=org.a11y.Bus /org/a11y/bus org.a11y.Bus.GetAddress 2>&1); then
    echo "with-accessibility.sh: there is no accessibility bus: $answer" >&2
    exit 69
  fi
  exec "$@"' with-accessibility "$@"
