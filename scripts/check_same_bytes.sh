#!/bin/sh
# Builds the Windows DLL again in another folder and compares the two byte by byte. Needs the build of
# scripts/windows.sh, which calls it.
# Usage: scripts/check_same_bytes.sh
set -eu
cd "$(dirname "$0")/.."

again=build/windows-again
rm -rf "$again"
cmake --preset windows-mingw -B "$again" -D CMAKE_RUNTIME_OUTPUT_DIRECTORY= \
  -D TRACKEDCAM_BUILD_HOST=OFF -D TRACKEDCAM_BUILD_TESTS=OFF
cmake --build "$again" --target trackedcam
cmp "$again/src/trackedcam.dll" build/windows-mingw/bin/trackedcam.dll
echo "Two builds gave the same bytes."
