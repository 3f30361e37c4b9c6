#!/bin/sh
# Builds the Windows DLL and the program, runs all tests under Wine, compares the results with those of
# Linux, and writes a zip to build/windows-mingw.
# Usage: scripts/windows.sh
set -eu
cd "$(dirname "$0")/.."

scripts/install_packages.sh build host tests windows
scripts/build_windows_dependencies.sh
# The Linux program that a test compares with.
cmake --preset release -D TRACKEDCAM_BUILD_TESTS=OFF
cmake --build --preset release --target trackedcam_program
cmake --preset windows-mingw
cmake --build --preset windows-mingw

# One Wine server for all tests: otherwise each program starts one and waits for it to end.
export WINEPREFIX="$PWD/build/wine"
mkdir -p "$WINEPREFIX"
wineserver --kill || true  # of an interrupted run
wineserver --persistent
trap 'wineserver --kill' EXIT
scripts/wine.sh wineboot --init
ctest --preset windows-mingw --parallel "$(nproc)"

cpack --preset windows-mingw
scripts/check_same_bytes.sh
