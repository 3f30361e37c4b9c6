#!/bin/sh
# Installs what is needed, builds, and runs all tests.
# Usage: scripts/test.sh [PRESET]   (dev, release, asan or coverage; dev by default)
set -eu
cd "$(dirname "$0")/.."

scripts/install_packages.sh build host tests docs
cmake --workflow --preset "${1:-dev}"
