#!/bin/sh
# Checks the format (clang-format 14), the scripts (shellcheck) and the code (clang-tidy).
set -eu
cd "$(dirname "$0")/.."

scripts/install_packages.sh
git ls-files '*.h' '*.cpp' | xargs clang-format --dry-run --Werror
shellcheck scripts/*.sh .ci/run
cmake --workflow --preset tidy
