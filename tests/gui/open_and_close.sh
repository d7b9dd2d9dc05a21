#!/usr/bin/env bash
# Runs a program on a display of its own until its window is there, asks the window to
# close, and fails unless the program then ends by itself with status 0.
# With --inside, DISPLAY is that display.
set -euo pipefail

if [ "${1:-}" != --inside ]; then
    exec xvfb-run -a -s "-screen 0 1280x1024x24" "$0" --inside "$@"
fi
shift

"$@" &
program=$!
trap 'kill -9 $program 2>/dev/null || true' EXIT

window=
for _ in $(seq 300); do
    window=$(xdotool search --onlyvisible --maxdepth 1 --name . 2>/dev/null | tail -n 1) && [ -n "$window" ] && break
    kill -0 "$program" 2>/dev/null || { echo "the program ended before its window came"; exit 1; }
    sleep 0.1
done
[ -n "$window" ] || { echo "no window came"; exit 1; }
sleep 1
xdotool windowquit "$window"
wait "$program"
