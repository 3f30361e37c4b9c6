#!/bin/sh
# Runs a Windows program without a display.
# Usage: scripts/wine.sh PROGRAM [ARGUMENT...]
#
# WINEPREFIX is build/wine unless it is set.
set -eu
unset DISPLAY WAYLAND_DISPLAY
export LC_ALL=C.UTF-8  # without it only ASCII file names are found
export WINEDEBUG=-all
export WINEDLLOVERRIDES="mscoree,mshtml="  # so that Wine downloads neither Mono nor Gecko
build="$(cd "$(dirname "$0")/.." && pwd)/build"
export WINEPREFIX="${WINEPREFIX:-$build/wine}"
mkdir -p "$WINEPREFIX"
exec wine "$@"
