#!/bin/sh
# Formats all C and C++ files with clang-format 14. With --check only lists the files to format.
# Usage: scripts/format.sh [--check]
set -eu
cd "$(dirname "$0")/.."

case "$(clang-format --version)" in
  *"version 14."*) ;;
  *)
    echo "scripts/format.sh: install clang-format 14, the version of Debian 12" >&2
    exit 1
    ;;
esac
case "${1:-}" in
  "") mode=-i ;;
  --check) mode="--dry-run --Werror" ;;
  *)
    echo "usage: scripts/format.sh [--check]" >&2
    exit 2
    ;;
esac
files=$(git ls-files "*.h" "*.hpp" "*.c" "*.cpp")  # fails outside a git repository
# shellcheck disable=SC2086  # one word for each option and file
clang-format $mode $files
