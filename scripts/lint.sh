#!/bin/sh
# Checks the format and the scripts (shellcheck); with --code the code as well (clang-tidy 14, and the
# warnings of clang), which takes many times as long.
set -eu
cd "$(dirname "$0")/.."

scripts/install_packages.sh build host tests docs lint
scripts/format.sh --check
git ls-files '*.sh' .ci/run | xargs shellcheck
if [ "${1:-}" = --code ]; then
  cmake --workflow --preset tidy
fi
