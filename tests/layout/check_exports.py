"""Compares the functions that the public header declares with those that the library exports.

Usage: check_exports.py HEADER NM LIBRARY
"""

import re
import subprocess
import sys

header, nm, library = sys.argv[1:]
with open(header, encoding="utf-8") as file:
    declared = set(re.findall(r"^TRACKEDCAM_API \w+ (\w+)\(", file.read(), re.MULTILINE))
table = subprocess.run([nm, "-D", "--defined-only", library], check=True, capture_output=True,
                       text=True).stdout
exported = {line.split()[-1] for line in table.splitlines()}

for name in sorted(declared - exported):
    print(f"{name} is declared and not exported")
for name in sorted(exported - declared):
    print(f"{name} is exported and not declared")
if not declared:
    print("the header declares nothing")
sys.exit(0 if declared and declared == exported else 1)
