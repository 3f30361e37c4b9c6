#!/usr/bin/env python3
"""Runs the commands in the README: first those that build a release, then those that use the program.

The program runs in a temporary folder, which also receives the installed files. Scripts that .ci/run
runs itself are skipped.
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
commands.sort(key=lambda command: command.startswith("trackedcam"))
assert len(commands) >= 7, f"only {commands} found"

with tempfile.TemporaryDirectory() as home:
    environment = dict(os.environ, HOME=home, PATH=f"{root / 'build/release/app'}:{os.environ['PATH']}")
    for command in commands:
        print(f"$ {command}", flush=True)
        folder = home if command.startswith("trackedcam") else root
        subprocess.run(command, shell=True, check=True, cwd=folder, env=environment)
