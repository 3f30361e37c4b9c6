"""Checks that the README's snippet is the marked part of the example, and that its links lead somewhere.

Usage: check_readme.py SOURCE_ROOT
"""

import pathlib
import re
import sys
import textwrap

root = pathlib.Path(sys.argv[1])
readme = (root / "README.md").read_text(encoding="utf-8")
example = (root / "examples/01_calibrate.cpp").read_text(encoding="utf-8")

faults = []
marked = re.search(r"// README begin\n(.*?)\s*// README end", example, re.DOTALL)
snippet = re.search(r"```cpp\n(.*?)\n```", readme, re.DOTALL)
if not marked or not snippet or textwrap.dedent(marked[1]) != snippet[1]:
    faults.append("the snippet differs from the marked part of examples/01_calibrate.cpp")
for link in re.findall(r"\]\(([^)#]+)\)", readme):
    if not (root / link).exists():
        faults.append(f"{link} does not exist")

print("\n".join(faults) or "the snippet is the example's and all links lead somewhere")
sys.exit(1 if faults else 0)
