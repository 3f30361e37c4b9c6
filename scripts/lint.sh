#!/bin/sh
# Checks the format (clang-format 14) and the shell scripts (shellcheck).
# With --code also checks the code (clang-tidy 14 and the warnings of clang), which takes much longer.
# Usage: scripts/lint.sh [--code]
set -eu
cd "$(dirname "$0")/.."

scripts/install_packages.sh build host tests docs lint
scripts/format.sh --check
git ls-files '*.sh' .ci/run | xargs shellcheck
if [ "${1:-}" = --code ]; then
  cmake --preset tidy
  cmake --build --preset tidy
fi
