#!/usr/bin/env python3
"""Runs the commands that the README shows, as a reader would, after scripts/demo.sh has built a release.

The program runs in a folder of its own, where the installed files go as well. The scripts that CI runs
anyway are left to it.
"""

import os
import pathlib
import re
import subprocess
import tempfile

root = pathlib.Path(__file__).resolve().parent.parent
readme = (root / "README.md").read_text(encoding="utf-8")
ci = (root / ".ci/run").read_text(encoding="utf-8").split()
commands = [command for command in
            re.findall(r"^    ((?:cmake|cpack|trackedcam|scripts/\S+)\b.*)$", readme, re.MULTILINE)
            if command.split()[0] not in ci]
assert len(commands) >= 7, f"only {commands} found"

with tempfile.TemporaryDirectory() as home:
    environment = dict(os.environ, HOME=home, PATH=f"{root / 'build/release/app'}:{os.environ['PATH']}")
    for command in commands:
        print(f"$ {command}", flush=True)
        folder = home if command.startswith("trackedcam") else root
        subprocess.run(command, shell=True, check=True, cwd=folder, env=environment)
