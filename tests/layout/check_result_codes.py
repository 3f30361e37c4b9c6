"""Checks that docs/result-codes.md has the codes and messages of the library, and that the limits in the
program are the library's.

Usage: check_result_codes.py SOURCE_ROOT
"""

import pathlib
import re
import sys

root = pathlib.Path(sys.argv[1])
page = (root / "docs/result-codes.md").read_text(encoding="utf-8")
source = (root / "src/core/result_code.cpp").read_text(encoding="utf-8")
header = (root / "src/core/result_code.h").read_text(encoding="utf-8")

library = dict(re.findall(r'^    \{(\d+), "(.*)"\},$', source, re.MULTILINE))
named = set(re.findall(r"^constexpr ResultCode \w+ = (-?\d+);$", header, re.MULTILINE))
listed = dict(re.findall(r"^\| \[(-?\d+)\]\(\S+\) \| (?:`(.*)`|none) \|", page, re.MULTILINE))

faults = [f"code {code} is not on the page" for code in sorted(named - set(listed))]
faults += [f"code {code}: the page says \"{listed.get(code, '')}\", the library \"{library.get(code, '')}\""
           for code in sorted(set(library) | set(listed)) if listed.get(code, "") != library.get(code, "")]

# The program has its own copy of the limits, because it uses only the library's public header.
LIMITS = re.compile(r"^constexpr \w+ (k(?:Lens|Norm|Spread|Rotation)\w+) = ([\d.]+)F?;", re.MULTILINE)
limits = {name: float(value) for file in ("src/api/calibration.cpp", "src/api/camera_tracker_run.cpp",
                                                      "src/handeye/outlier_filter.cpp")
          for name, value in LIMITS.findall((root / file).read_text(encoding="utf-8"))}
shown = {name: float(value)
         for name, value in LIMITS.findall((root / "host/verdict/verdict.cpp").read_text(encoding="utf-8"))}
if len(limits) != 6 or limits != shown:
    faults.append(f"the library's limits are {limits}, the program's {shown}")
print("\n".join(faults) or f"{len(listed)} codes and messages, and all limits, are the library's")
sys.exit(0 if listed and named and not faults else 1)
