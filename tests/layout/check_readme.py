"""Checks that the README's snippets are the marked parts of the examples.

Usage: check_readme.py SOURCE_ROOT
"""

import pathlib
import re
import sys
import textwrap

root = pathlib.Path(sys.argv[1])
readme = (root / "README.md").read_text(encoding="utf-8")

faults = []
snippets = re.findall(r"```(?:cpp|c)\n(.*?)\n```", readme, re.DOTALL)
for example in sorted((root / "examples").glob("*.c*")):
    marked = re.findall(r"/[/*] README begin(?: \*/)?\n(.*?)\s*/[/*] README end", example.read_text(encoding="utf-8"), re.DOTALL)
    for part in map(textwrap.dedent, marked):
        if part in snippets:
            snippets.remove(part)
        else:
            faults.append(f"the README does not show the marked part of {example.name}")
faults += [f"no example has the snippet\n{snippet}" for snippet in snippets]

print("\n".join(faults) or "every snippet is an example's")
sys.exit(1 if faults else 0)
