"""Checks that only the files *_posix.cpp and *_windows.cpp depend on the operating system.

The only exception: the export macros of the public headers.

Usage: check_platform.py SOURCE_ROOT
"""

import pathlib
import re
import sys

FOLDERS = ["include", "src", "simulator", "crosscheck", "host", "c", "app", "examples", "benchmarks", "tests"]
SEAM = re.compile(r"_(posix|windows)\.cpp$")
EXCEPTIONS = {"include/trackedcam/trackedcam.h", "include/trackedcam/trackedcam_c.h"}
ASKS = re.compile(
    r"\b(_WIN32|_WIN64|WIN32|__MINGW32__|__MINGW64__|_MSC_VER|__linux__|__unix__|__APPLE__|__GNUC__)\b"
    r"|#include <(windows|unistd|fcntl|io|share|dlfcn|sys/\w+)\.h>")

root = pathlib.Path(sys.argv[1])
faults = []
files = seams = 0
for folder in FOLDERS:
    for path in sorted((root / folder).rglob("*")):
        if path.suffix not in {".h", ".c", ".cpp"}:
            continue
        files += 1
        name = path.relative_to(root).as_posix()
        if SEAM.search(name):
            seams += 1
        elif name not in EXCEPTIONS and (found := ASKS.search(path.read_text(encoding="utf-8"))):
            faults.append(f"{name} uses {found[0]}")

print("\n".join(faults) or f"{seams} of {files} files depend on the system")
sys.exit(1 if faults or not seams else 0)
