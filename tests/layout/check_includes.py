"""Checks that the folders include each other in the directions of docs/architecture.md only.

Usage: check_includes.py SOURCE_ROOT
"""

import pathlib
import re
import sys

# What the core and hosts do not see.
THIRD_PARTY = re.compile(r"#include <(Eigen|opencv2)/")

root = pathlib.Path(sys.argv[1])
page = (root / "docs/architecture.md").read_text(encoding="utf-8")
directions = {folder: {folder, *targets.split(", ")}
              for folder, targets in re.findall(r"^    (\w+) *-> ?(.*)$", page, re.MULTILINE)}
homes = {path.name: path for path in [*(root / "src").iterdir(), *root.iterdir()] if path.is_dir()}

faults = [f"src/{path.name} has no directions"
          for path in (root / "src").iterdir() if path.is_dir() and path.name not in directions]
files = 0
for folder, allowed in directions.items():
    for path in sorted(homes[folder].rglob("*")):
        if path.suffix not in {".h", ".cpp"}:
            continue
        files += 1
        text = path.read_text(encoding="utf-8")
        for include in re.findall(r'#include "([^"]+)"', text):
            if include not in allowed and include.split("/")[0] not in allowed:
                faults.append(f"{path.relative_to(root)} includes {include}")
        if folder in {"core", "include"} and THIRD_PARTY.search(text):
            faults.append(f"{path.relative_to(root)} includes more than the standard library")

print("\n".join(faults) or f"{files} files include in the allowed directions")
sys.exit(0 if files and not faults else 1)
