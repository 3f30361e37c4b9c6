#!/bin/sh
# Builds the fuzzers and runs each for some seconds, two at a time. Fails if one finds an error.
# Usage: scripts/fuzz.sh [SECONDS [NAME...]]   (default: 20 seconds, all fuzzers)
#
# Inputs that fail are written to build/fuzz/findings; to repeat one, run build/asan/fuzz/fuzz_NAME FILE.
# Inputs that reach new code are kept in build/fuzz/corpus/NAME and used with those of fuzz/seeds/NAME.
set -eu
cd "$(dirname "$0")/.."

seconds="${1:-20}"
[ $# -eq 0 ] || shift
scripts/install_packages.sh build host tests
cmake --preset asan
cmake --build --preset fuzz

[ $# -gt 0 ] || set -- numbers utf8 data_file image exports result truth command_line config options run_log observations pose_formats
findings=build/fuzz/findings
mkdir -p "$findings"
export ASAN_OPTIONS=allocator_may_return_null=1:detect_odr_violation=0
export LSAN_OPTIONS="suppressions=$PWD/tests/leaks_of_others.txt:print_suppressions=0"

# A fixed seed: a change must not pass or fail by chance.
run_one() {
  mkdir -p "build/fuzz/corpus/$1"
  if ! "build/asan/fuzz/fuzz_$1" -max_total_time="$seconds" -timeout=20 -rss_limit_mb=2048 -max_len=65536 \
    -seed=1 -artifact_prefix="$findings/$1-" -print_final_stats=1 "build/fuzz/corpus/$1" "fuzz/seeds/$1" \
    >"build/fuzz/$1.log" 2>&1; then
    tail -n 40 "build/fuzz/$1.log"
    echo "fuzz_$1 found an error; see $findings"
    return 1
  fi
  echo "fuzz_$1: $(sed -n 's/^stat::number_of_executed_units: //p' "build/fuzz/$1.log") inputs, nothing found"
}

failed=0
while [ $# -gt 0 ]; do
  run_one "$1" &
  first=$!
  shift
  if [ $# -gt 0 ]; then
    run_one "$1" || failed=1
    shift
  fi
  wait "$first" || failed=1
done
exit "$failed"
