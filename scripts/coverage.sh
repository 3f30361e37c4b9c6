#!/bin/sh
# Builds with coverage, runs all tests, and prints the share of lines that they cover in each folder.
# Fails if src/, crosscheck/ or host/ is below 95 %.
# Usage: scripts/coverage.sh
#
# build/coverage/lines.txt lists the files.
set -eu
cd "$(dirname "$0")/.."

least=95
folders="src crosscheck host report simulator app c"
[ ! -d build/coverage ] || find build/coverage -name '*.gcda' -delete  # of earlier runs
scripts/test.sh coverage

filters=""
for folder in $folders; do
  filters="$filters --filter $folder/"
done
# shellcheck disable=SC2086  # one word for each option
gcovr --root . --object-directory build/coverage --exclude-throw-branches --exclude-unreachable-branches \
  --gcov-ignore-parse-errors $filters --txt build/coverage/lines.txt --json-summary build/coverage/lines.json
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
