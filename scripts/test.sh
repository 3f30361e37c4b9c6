#!/bin/sh
# Installs what is needed, builds, and runs all tests.
# Usage: scripts/test.sh [PRESET]   (dev, release, asan or coverage; dev by default)
set -eu
cd "$(dirname "$0")/.."

scripts/install_packages.sh build host tests docs
preset="${1:-dev}"
cmake --preset "$preset"
cmake --build --preset "$preset"
ctest --preset "$preset"
