"""Checks that the tables of the pages have the values of the CSV files in docs/.

Such a table follows a comment with the name of its CSV file. It has some or all columns of the file.

Usage: check_measured_tables.py SOURCE_ROOT
"""

import csv
import pathlib
import re
import sys

docs = pathlib.Path(sys.argv[1]) / "docs"
files = {path.relative_to(docs).as_posix(): path for path in docs.rglob("*.csv")}


def cells(line):
    return [cell.strip() for cell in line.strip("|\n").split("|")]


faults = []
shown = set()
for page in sorted(docs.rglob("*.md")):
    text = page.read_text(encoding="utf-8")
    for name, table in re.findall(r"<!-- (\S+\.csv) -->\n((?:\|.*\n)+)", text):
        shown.add(name)
        if name not in files:
            faults.append(f"{page.name}: {name} does not exist")
            continue
        header, _, *lines = table.splitlines()
        rows = [dict(zip(cells(header), cells(line))) for line in lines]
        with open(files[name], encoding="utf-8", newline="") as file:
            measured = [{column: row.get(column) for column in cells(header)}
                        for row in csv.DictReader(file)]
        faults += [f"{page.name}: {row} is not in {name}" for row in rows if row not in measured]
        faults += [f"{page.name}: {row} of {name} is missing" for row in measured if row not in rows]
faults += [f"no page has a table of {name}" for name in sorted(set(files) - shown)]
print("\n".join(faults) or f"{len(shown)} tables agree with their CSV files")
sys.exit(0 if shown and not faults else 1)
