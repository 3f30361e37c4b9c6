"""Checks that the folders include each other only in the directions of docs/architecture.md.

Usage: check_includes.py SOURCE_ROOT
"""

import pathlib
import re
import sys

# Libraries that the core and the public headers do not include.
THIRD_PARTY = re.compile(r"#include <(Eigen|opencv2)/")

root = pathlib.Path(sys.argv[1])
page = (root / "docs/architecture.md").read_text(encoding="utf-8")
directions = {folder: {folder, *targets.split(", ")}
              for folder, targets in re.findall(r"^    ([\w/]+) *-> ?(.*)$", page, re.MULTILINE)}


def name(path):
    """The path as #include lines have it: without src/."""
    return path.relative_to(root / "src" if root / "src" in path.parents else root).as_posix()


homes = {name(path): path for top in [root, root / "src", root / "host", root / "app"] for path in top.iterdir() if path.is_dir()}
faults = [f"docs/architecture.md has no directions for {folder}" for folder, path in homes.items()
          if path.parent != root and folder not in directions]
own = {*homes, "trackedcam"}
files = 0
for folder, allowed in directions.items():
    for path in sorted(homes[folder].rglob("*")):
        if path.suffix not in {".h", ".hpp", ".cpp"}:
            continue
        files += 1
        text = path.read_text(encoding="utf-8")
        for include in re.findall(r'#include ["<]([^">]+)[">]', text):
            places = {include, *(parent.as_posix() for parent in pathlib.PurePath(include).parents)}
            if places & own and not places & allowed:
                faults.append(f"{name(path)} may not include {include}")
        if folder in {"core", "include"} and THIRD_PARTY.search(text):
            faults.append(f"{name(path)} may include only the standard library")

print("\n".join(faults) or f"{files} files include in the allowed directions")
sys.exit(0 if files and not faults else 1)
