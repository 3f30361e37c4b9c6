#!/bin/sh
# Builds with coverage, runs the tests that are given (all by default), and prints which part of the
# lines of each folder they reach. Fails where src/, crosscheck/ or host/ is below 95 %.
# Usage: scripts/coverage.sh [REGEX]   (of names of tests, as ctest takes it)
#
# build/coverage/lines.txt tells it file by file.
set -eu
cd "$(dirname "$0")/.."

least=95
scripts/install_packages.sh build host tests
cmake --preset coverage
cmake --build --preset coverage
find build/coverage -name '*.gcda' -delete
# A test that fails or is slow tells about itself in another preset; here its lines count.
ctest --preset coverage --quiet -R "${1:-^(core|geometry|io|calib|handeye|api|simulator|crosscheck|host|app|report|shoots|faults)/}" || true

gcovr --root . --object-directory build/coverage --exclude-throw-branches --exclude-unreachable-branches \
  --filter 'src/' --filter 'crosscheck/' --filter 'host/' --filter 'report/' --filter 'simulator/' \
  --filter 'app/' --txt build/coverage/lines.txt --json-summary build/coverage/lines.json \
  --gcov-ignore-parse-errors
python3 - "$least" <<'END'
import collections
import json
import sys

folders = collections.defaultdict(lambda: [0, 0])
for file in json.load(open("build/coverage/lines.json", encoding="utf-8"))["files"]:
    folder = folders[file["filename"].split("/")[0]]
    folder[0] += file["line_covered"]
    folder[1] += file["line_total"]
low = []
for name, (covered, total) in sorted(folders.items()):
    share = 100 * covered / total
    print(f"{name + '/':14}{share:6.1f} % of {total} lines")
    if name in {"src", "crosscheck", "host"} and share < float(sys.argv[1]):
        low.append(name)
sys.exit(f"below {sys.argv[1]} %: {', '.join(low)}" if low or not folders else 0)
END
