#!/usr/bin/env bash
# Runs a program until its window is there, asks the window to close, and fails unless
# the program then ends by itself with status 0.
set -euo pipefail

"$@" &
program=$!
trap 'kill -9 $program 2>/dev/null || true' EXIT

window=
for _ in $(seq 300); do
    window=$(wmctrl -l 2>/dev/null | cut -d' ' -f1 | tail -n 1) || true
    [ -z "$window" ] || break
    kill -0 "$program" || { echo "the program ended before its window came"; exit 1; }
    sleep 0.1
done
[ -n "$window" ] || { echo "no window came"; exit 1; }
sleep 1
wmctrl -i -c "$window"
wait "$program"
