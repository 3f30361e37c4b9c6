#!/bin/sh
# Runs a Windows program without a display: scripts/wine.sh PROGRAM [ARGUMENT...]
# WINEPREFIX is a folder below build/, unless it is set.
set -eu
unset DISPLAY WAYLAND_DISPLAY
export LC_ALL=C.UTF-8  # otherwise only ASCII names are found
export WINEDEBUG=-all
export WINEDLLOVERRIDES="mscoree,mshtml="  # no downloads of what is not needed
build="$(cd "$(dirname "$0")/.." && pwd)/build"
export WINEPREFIX="${WINEPREFIX:-$build/wine}"
mkdir -p "$WINEPREFIX"
exec wine "$@"
