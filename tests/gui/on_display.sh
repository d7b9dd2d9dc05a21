#!/usr/bin/env bash
# Runs a program on a display of its own, with a window manager.
set -euo pipefail

# The server picks a free number itself, and names it once clients may come.
folder=$(mktemp -d)
Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp 3>"$folder/number" 2>"$folder/log" &
server=$!
manager=
trap 'kill $manager $server 2>/dev/null || true; wait; rm -rf "$folder"' EXIT
until [ -s "$folder/number" ]; do
    kill -0 $server 2>/dev/null || { echo "no display could be started:"; cat "$folder/log"; exit 1; }
    sleep 0.05
done
DISPLAY=:$(cat "$folder/number")
export DISPLAY
unset WAYLAND_DISPLAY

openbox >"$folder/log" 2>&1 &
manager=$!
until wmctrl -m >/dev/null 2>&1; do
    kill -0 $manager 2>/dev/null || { echo "the window manager did not start:"; cat "$folder/log"; exit 1; }
    sleep 0.05
done
"$@"
