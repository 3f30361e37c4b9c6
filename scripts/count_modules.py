#!/usr/bin/env python3
"""Counts the modules of the product and checks that they stay readable.

A module is a header with its source files (x.h, x.cpp, x_posix.cpp, x_windows.cpp), or one of them alone.
Fails if modules include each other in a circle, because neither can then be read or tested without the
other. Fails if a file has more than 600 lines, because it then holds more than one idea.

Usage: scripts/count_modules.py
"""

import collections
import pathlib
import re
import statistics
import sys

FOLDERS = ["src", "crosscheck", "host", "report", "c", "app", "simulator"]
LINE_LIMIT = 600
SHORT = 60
COMMAND = "app/commands/calibrate_command"

root = pathlib.Path(__file__).resolve().parent.parent


def module_of(path):
    """The path without extension and system: src/core/platform_posix.cpp belongs to src/core/platform."""
    return re.sub(r"(_posix|_windows)?\.\w+$", "", path.relative_to(root).as_posix())


files = [path for folder in FOLDERS for path in sorted((root / folder).rglob("*"))
         if path.suffix in {".h", ".cpp"}]
modules = {module_of(path) for path in files}
lines_of_file = {}
lines = collections.Counter()
includes = {module: set() for module in modules}
for path in files:
    text = path.read_text(encoding="utf-8")
    module = module_of(path)
    lines_of_file[path] = text.count("\n")
    lines[module] += lines_of_file[path]
    for name in re.findall(r'^#include "(.+)"$', text, re.MULTILINE):
        included = {module_of(root / name), module_of(root / "src" / name)} & modules
        includes[module] |= included - {module}


def reached_from(module):
    """The modules that this one includes, directly or through others."""
    reached = set()
    waiting = [module]
    while waiting:
        new = includes[waiting.pop()] - reached
        reached |= new
        waiting += new
    return reached


reached = {module: reached_from(module) for module in sorted(modules)}
circles = {tuple(sorted(other for other in reached[module] if module in reached[other]))
           for module in modules if module in reached[module]}


def print_summary(name, counted):
    lengths = [lines[module] for module in counted]
    short = sum(length < SHORT for length in lengths) / len(lengths)
    print(f"{name:12}{len(lengths):4} modules, median {statistics.median(lengths):5g} lines, "
          f"{short:4.0%} below {SHORT} lines")


for folder in FOLDERS:
    print_summary(folder, [module for module in modules if module.startswith(folder + "/")])
print_summary("all", modules)
print(f"{len(files)} files; the largest modules: "
      + ", ".join(f"{module} ({count})" for module, count in lines.most_common(5)))
print(f"{COMMAND} reaches {len(reached[COMMAND] | {COMMAND})} modules, itself included")

for circle in sorted(circles):
    print(f"a circle of {len(circle)} modules:")
    for module in circle:
        print(f"  {module} includes {', '.join(sorted(includes[module] & set(circle)))}")
too_long = [path for path in files if lines_of_file[path] > LINE_LIMIT]
for path in too_long:
    print(f"{path.relative_to(root)} has {lines_of_file[path]} lines, the limit is {LINE_LIMIT}")
if not circles and not too_long:
    print(f"no circle, no file above {LINE_LIMIT} lines")
sys.exit(1 if circles or too_long else 0)
