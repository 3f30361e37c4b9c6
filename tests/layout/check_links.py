"""Checks that each relative link and picture of the pages leads to an existing file and heading.

Usage: check_links.py SOURCE_ROOT
"""

import pathlib
import re
import sys

root = pathlib.Path(sys.argv[1])
pages = sorted([*root.glob("*.md"), *(root / "docs").rglob("*.md")])


def prose(page):
    """The page without its code, where brackets are not links."""
    text = page.read_text(encoding="utf-8")
    return re.sub(r"```.*?```|^ {4}.*?$|`[^`\n]*`", "", text, flags=re.DOTALL | re.MULTILINE)


def anchors(page):
    headings = re.findall(r"^#+ (.+)$", page.read_text(encoding="utf-8"), re.MULTILINE)
    return {re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-") for heading in headings}


faults = []
links = 0
for page in pages:
    for link in re.findall(r"\]\(([^)\s]+)\)", prose(page)):
        if re.match(r"\w+:", link):
            continue
        links += 1
        path, _, anchor = link.partition("#")
        target = page.parent / path if path else page
        if not target.exists():
            faults.append(f"{page.relative_to(root)}: {link} does not exist")
        elif anchor and anchor not in anchors(target):
            faults.append(f"{page.relative_to(root)}: there is no heading {link}")

print("\n".join(faults) or f"{links} links of {len(pages)} pages exist")
sys.exit(0 if links and not faults else 1)
