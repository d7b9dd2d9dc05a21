#!/usr/bin/env bash
# Runs a program on a display of its own, with a window manager.
set -euo pipefail
if [ "${1:-}" != --inside ]; then
    exec xvfb-run -a -s "-screen 0 1280x1024x24" "$0" --inside "$@"
fi
shift
openbox 2>/dev/null &
manager=$!
trap 'kill -9 $manager 2>/dev/null || true' EXIT
until wmctrl -m >/dev/null 2>&1; do
    kill -0 $manager || { echo "the window manager did not start"; exit 1; }
    sleep 0.05
done
"$@"
