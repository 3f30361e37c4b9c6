"""Checks that trackedcam.hpp calls every function of trackedcam_c.h, so that it does not fall behind.

Usage: check_cpp_header.py SOURCE_ROOT
"""

import pathlib
import re
import sys

folder = pathlib.Path(sys.argv[1]) / "include/trackedcam"
declared = set(re.findall(r"^(?:TRACKEDCAM_C_API .*\b|)(trackedcam_\w+)\(", (folder / "trackedcam_c.h").read_text(encoding="utf-8"),
                          re.MULTILINE))
code = re.sub(r"//.*", "", (folder / "trackedcam.hpp").read_text(encoding="utf-8"))
missing = sorted(declared - set(re.findall(r"\btrackedcam_\w+\b", code)))
print(f"trackedcam.hpp does not call {', '.join(missing)}" if missing else f"trackedcam.hpp calls all {len(declared)} functions")
sys.exit(0 if declared and not missing else 1)
