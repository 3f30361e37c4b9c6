#!/usr/bin/env python3
"""Runs the commands that the README shows, as a reader would, after scripts/demo.sh has built a release.

Those of the program run in a folder of their own, as do installed files; the two scripts are what CI
runs anyway.
"""

import os
import pathlib
import re
import subprocess
import tempfile

root = pathlib.Path(__file__).resolve().parent.parent
readme = (root / "README.md").read_text(encoding="utf-8")
commands = re.findall(r"^    ((?:cmake|cpack|trackedcam) .*)$", readme, re.MULTILINE)
assert len(commands) >= 7, f"only {commands} found"
for script in re.findall(r"^    (scripts/\S+)", readme, re.MULTILINE):
    assert script in (root / ".ci/run").read_text(encoding="utf-8"), f"CI does not run {script}"

with tempfile.TemporaryDirectory() as home:
    environment = dict(os.environ, HOME=home, PATH=f"{root / 'build/release/app'}:{os.environ['PATH']}")
    for command in commands:
        print(f"$ {command}", flush=True)
        folder = home if command.startswith("trackedcam") else root
        subprocess.run(command, shell=True, check=True, cwd=folder, env=environment)
