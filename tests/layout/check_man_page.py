"""Checks that the manual has the same options as the program's help.

Usage: check_man_page.py SOURCE_ROOT PROGRAM
"""

import pathlib
import re
import subprocess
import sys

root, program = pathlib.Path(sys.argv[1]), sys.argv[2]
page = (root / "docs/trackedcam.1.md").read_text(encoding="utf-8")
commands = sorted(set(re.findall(r"^    trackedcam ([a-z]+)", page, re.MULTILINE)))


def options_in_bold(text):
    return set(re.findall(r"\*\*(--[a-z0-9-]+)\*\*", text))


def shown(*arguments):
    text = subprocess.run([program, *arguments, "--help"], check=True, capture_output=True,
                          encoding="utf-8").stdout
    return set(re.findall(r"(?m)^ +(?:-\w,\s*)?(--[a-z0-9-]+)", text))


faults = [] if commands else ["the manual has no synopsis"]
of_all = re.search(r"^## All commands\n(.*?)^#", page, re.MULTILINE | re.DOTALL)[1]
for command in commands:
    sections = re.findall(rf"^## {command}\b.*?\n(.*?)(?=^#)", page, re.MULTILINE | re.DOTALL)
    in_manual = options_in_bold("".join(sections) + of_all)
    in_help = shown(command) | shown()
    faults += [f"{command}: {option} is not in the manual" for option in sorted(in_help - in_manual)]
    faults += [f"{command}: {option} does not exist" for option in sorted(in_manual - in_help)]

print("\n".join(faults) or f"the manual and the help agree on {', '.join(commands)} and their options")
sys.exit(1 if faults else 0)
