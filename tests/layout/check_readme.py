"""Checks that the snippets of the README and of docs/other-languages.md are marked parts of the examples.

The mark names the page that shows the part.

Usage: check_readme.py SOURCE_ROOT
"""

import pathlib
import re
import sys
import textwrap

root = pathlib.Path(sys.argv[1])
snippets = {page: re.findall(r"```(?:cpp|c)\n(.*?)\n```", (root / page).read_text(encoding="utf-8"), re.DOTALL)
            for page in ("README.md", "docs/other-languages.md")}

faults = []
shown = 0
for example in sorted((root / "examples").glob("*.c*")):
    marked = re.findall(r"/[/*] (\S+\.md) begin(?: \*/)?\n(.*?)\s*/[/*] \1 end",
                        example.read_text(encoding="utf-8"), re.DOTALL)
    for page, part in marked:
        part = textwrap.dedent(part)
        if part in snippets.get(page, []):
            snippets[page].remove(part)
            shown += 1
        else:
            faults.append(f"{page} does not show the marked part of {example.name}")
faults += [f"no example has this snippet of {page}\n{snippet}" for page, left in snippets.items() for snippet in left]

print("\n".join(faults) or f"{shown} snippets are parts of the examples")
sys.exit(0 if shown and not faults else 1)
