"""Checks that docs/result-codes.md lists the codes and messages of the library's table, and that the
limits which the program shows are the library's.

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

# The program is no part of the library, so it has the figures of its own.
LIMITS = re.compile(r"^constexpr \w+ (k(?:Lens|Norm|Spread)\w+) = ([\d.]+)F?;", re.MULTILINE)
limits = {name: float(figure) for file in ("src/api/calibration.cpp", "src/api/camera_tracker_run.cpp")
          for name, figure in LIMITS.findall((root / file).read_text(encoding="utf-8"))}
shown = {name: float(figure)
         for name, figure in LIMITS.findall((root / "host/verdict/verdict.cpp").read_text(encoding="utf-8"))}
if len(limits) != 5 or limits != shown:
    faults.append(f"the library's limits are {limits}, those that the program shows {shown}")
print("\n".join(faults) or f"{len(listed)} codes and their messages are those of the library, and so are the limits")
sys.exit(0 if listed and named and not faults else 1)
