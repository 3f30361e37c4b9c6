#!/bin/sh
# Checks the format, the scripts (shellcheck) and the code (clang-tidy 14, and the warnings of clang).
set -eu
cd "$(dirname "$0")/.."

scripts/install_packages.sh build host tests docs lint
scripts/format.sh --check
git ls-files '*.sh' .ci/run | xargs shellcheck
cmake --workflow --preset tidy
