"""Checks that docs/result-codes.md lists the codes and messages of the library's table.

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
print("\n".join(faults) or f"{len(listed)} codes and their messages are those of the library")
sys.exit(0 if listed and named and not faults else 1)
