"""Checks that a DLL or program for Windows needs only DLLs of Windows and the library.

With --alone the library is not allowed either.

Usage: check_imports.py [--alone] OBJDUMP FILE...
"""

import re
import subprocess
import sys

ALLOWED = {"kernel32.dll", "msvcrt.dll"}

arguments = sys.argv[1:]
if arguments[0] == "--alone":
    arguments = arguments[1:]
else:
    ALLOWED.add("trackedcam.dll")
objdump, *files = arguments
faults = []
for file in files:
    headers = subprocess.run([objdump, "-p", file], check=True, capture_output=True, text=True).stdout
    imported = {name.lower() for name in re.findall(r"DLL Name: (\S+)", headers)}
    faults += [f"{file} needs {name}" for name in sorted(imported - ALLOWED)]
    if not imported:
        faults.append(f"{file} has no imports")

print("\n".join(faults) or "only allowed DLLs are needed")
sys.exit(1 if faults else 0)
