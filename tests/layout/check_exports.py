"""Checks that the library exports the functions that its header declares, and no others.

Usage: check_exports.py HEADER LIBRARY NM OBJDUMP
"""

import re
import subprocess
import sys

header, library, nm, objdump = sys.argv[1:]
with open(header, encoding="utf-8") as file:
    # A declaration begins with the macro and may continue on the next line.
    declared = set(re.findall(r"^TRACKEDCAM_(?:C_)?API [\w ]+[*\s]\s*(\w+)\(", file.read(), re.MULTILINE))


def output_of(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


if library.endswith(".dll"):
    names = output_of(objdump, "-p", library).split("[Ordinal/Name Pointer] Table\n")[1].split("\n\n")[0]
    exported = set(re.findall(r"\[ *\d+\] (\S+)$", names, re.MULTILINE))
else:
    exported = {line.split()[-1] for line in output_of(nm, "-D", "--defined-only", library).splitlines()}

for name in sorted(declared - exported):
    print(f"{name} is declared but not exported")
for name in sorted(exported - declared):
    print(f"{name} is exported but not declared")
if not declared:
    print("the header declares no function")
sys.exit(0 if declared and declared == exported else 1)
