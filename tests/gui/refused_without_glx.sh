#!/usr/bin/env bash
# Runs a program on a display that has no OpenGL; it must end with status 1 and one line
# that says so.
set -uo pipefail

error=$("$@" 2>&1)
status=$?
[ $status -eq 1 ] && [ "$(wc -l <<<"$error")" -eq 1 ] && [[ $error == *"OpenGL (GLX)"* ]] && exit 0
echo "status $status, found '$error', expected status 1 and one line on OpenGL (GLX)"
exit 1
