"""Checks that a DLL or program for Windows needs nothing but what Windows has, and the library.

Usage: check_imports.py OBJDUMP FILE...
"""

import re
import subprocess
import sys

ALLOWED = {"kernel32.dll", "msvcrt.dll", "trackedcam.dll"}

objdump, *files = sys.argv[1:]
faults = []
for file in files:
    headers = subprocess.run([objdump, "-p", file], check=True, capture_output=True, text=True).stdout
    imported = {name.lower() for name in re.findall(r"DLL Name: (\S+)", headers)}
    faults += [f"{file} needs {name}" for name in sorted(imported - ALLOWED)]
    if not imported:
        faults.append(f"{file} shows no imports")

print("\n".join(faults) or "Windows has what is needed")
sys.exit(1 if faults else 0)
