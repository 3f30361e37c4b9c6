#!/bin/sh
# Formats all sources with clang-format 14; with --check says only which are not formatted.
set -eu
cd "$(dirname "$0")/.."

case "$(clang-format --version)" in
  *"version 14."*) ;;
  *)
    echo "scripts/format.sh: clang-format 14 is needed, as in Debian 12" >&2
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
files=$(git ls-files "*.h" "*.c" "*.cpp")  # fails where there is no repository
# shellcheck disable=SC2086  # one word for each option and file
clang-format $mode $files
