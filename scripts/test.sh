#!/bin/sh
# Installs the packages, builds everything and runs all tests, one test for each processor at a time.
# Usage: scripts/test.sh [PRESET]   (dev, release, asan, tsan or coverage; default: dev)
set -eu
cd "$(dirname "$0")/.."

scripts/install_packages.sh build host tests docs
preset="${1:-dev}"
cmake --preset "$preset"
cmake --build --preset "$preset"
ctest --preset "$preset" --parallel "$(nproc)"
