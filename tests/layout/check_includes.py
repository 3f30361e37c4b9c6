"""Checks that the folders include each other in the allowed directions only.

Usage: check_includes.py SOURCE_ROOT
"""

import pathlib
import re
import sys

ALLOWED = {
    "src/core": {"core"},
    "src/geometry": {"geometry", "core"},
    "src/io": {"io", "core"},
    "src/calib": {"calib", "io", "geometry", "core"},
    "src/handeye": {"handeye", "io/tracker_record.h", "geometry", "core"},
    "src/api": {"api", "calib", "handeye", "io", "geometry", "core", "trackedcam"},
    "include": set(),
    "simulator": {"simulator"},
    "app": {"app", "simulator", "trackedcam"},
}
# The core knows the standard library only.
THIRD_PARTY = re.compile(r"#include <(Eigen|opencv2)/")

root = pathlib.Path(sys.argv[1])
faults = []
files = 0
for folder, allowed in ALLOWED.items():
    for path in sorted((root / folder).rglob("*")):
        if path.suffix not in {".h", ".cpp"}:
            continue
        files += 1
        text = path.read_text(encoding="utf-8")
        for include in re.findall(r'#include "([^"]+)"', text):
            if include not in allowed and include.split("/")[0] not in allowed:
                faults.append(f"{path.relative_to(root)} includes {include}")
        if folder in {"src/core", "include"} and THIRD_PARTY.search(text):
            faults.append(f"{path.relative_to(root)} includes more than the standard library")

print("\n".join(faults) or f"{files} files include in the allowed directions")
sys.exit(0 if files and not faults else 1)
