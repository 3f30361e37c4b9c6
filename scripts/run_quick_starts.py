#!/usr/bin/env python3
"""Runs each command that the three quick starts show, in order, with a simulated shoot in place of the user's.

Usage: run_quick_starts.py [PROGRAM]   (default: build/release/app/trackedcam)
"""

import os
import pathlib
import re
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
PROGRAM = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else ROOT / "build/release/app/trackedcam").resolve()


def in_unreal(x, y, z, qw, qx, qy, qz):
    return 100 * z, -100 * x, 100 * y, qw, -qz, qx, -qy


def in_unity(x, y, z, qw, qx, qy, qz):
    return -x, y, z, qw, qx, -qy, -qz


def as_reported(*pose):
    return pose


# The data file of each page, and the axes in which it is recorded.
PAGES = {"quick-start-operator.md": ("tracker_data.csv", as_reported, 0.02992),
         "quick-start-unreal.md": ("recorded.csv", in_unreal, 0.03),
         "quick-start-unity.md": ("recorded.csv", in_unity, 0.03)}


def commands_of(page):
    """Those in blocks and those in the text, unless they are only the name of a command."""
    found = re.findall(r"^ +(trackedcam .*)$|`(trackedcam [^`]*--[^`]*)`", page, re.MULTILINE)
    return [" ".join((block or inline).split()) for block, inline in found]


def record(folder, name, axes, square):
    """A shoot that was photographed, and five photographs of the next morning."""
    subprocess.run(["trackedcam", "simulate", "recorded", "--image", "960x540", "--square", str(square)], check=True,
                   cwd=folder, stdout=subprocess.DEVNULL)
    header, *rows = (folder / "recorded/tracker_data.csv").read_text(encoding="utf-8").splitlines()
    lines = [header]
    for row in rows:
        time, photograph, *fields = row.split(",")
        numbers = [float(field) for field in fields]
        poses = [*axes(*numbers[:7]), *axes(*numbers[7:])]
        lines.append(",".join([time, f"recorded/{photograph}", *(f"{number:.9f}" for number in poses)]))
    (folder / name).write_text("\n".join(lines) + "\n", encoding="utf-8")
    (folder / "morning.csv").write_text("\n".join(lines[:6]) + "\n", encoding="utf-8")


os.environ["PATH"] = f"{PROGRAM.parent}:{os.environ['PATH']}"
for name, (data, axes, square) in PAGES.items():
    commands = commands_of((ROOT / "docs" / name).read_text(encoding="utf-8"))
    assert len(commands) >= 4, f"{name}: only {commands} found"
    with tempfile.TemporaryDirectory() as home:
        record(pathlib.Path(home), data, axes, square)
        for command in commands:
            print(f"{name}$ {command}", flush=True)
            subprocess.run(command, shell=True, check=True, cwd=home, stdout=subprocess.DEVNULL)
