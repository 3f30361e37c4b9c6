#!/bin/sh
# Builds the Windows DLL and the host program, runs all tests under Wine, compares with Linux, and
# leaves a zip in build/windows-mingw.
set -eu
cd "$(dirname "$0")/.."

scripts/install_packages.sh build host tests windows
scripts/build_windows_dependencies.sh
# The tests compare with the program of this machine.
cmake --preset release -D TRACKEDCAM_BUILD_TESTS=OFF
cmake --build --preset release --target trackedcam_program
cmake --preset windows-mingw
cmake --build --preset windows-mingw

# One server for all tests. Each program would otherwise start one and wait for its end.
export WINEPREFIX="$PWD/build/wine"
mkdir -p "$WINEPREFIX"
wineserver --kill || true  # of a run that was cut short
wineserver --persistent
trap 'wineserver --kill' EXIT
scripts/wine.sh wineboot --init
ctest --preset windows-mingw

cpack --preset windows-mingw
scripts/check_same_bytes.sh
