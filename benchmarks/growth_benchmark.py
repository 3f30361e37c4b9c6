#!/usr/bin/env python3
"""Time, peak memory and accuracy of a calibration from 12 to 400 photographs.

Usage: growth_benchmark.py PROGRAM [PHOTOGRAPHS...]

Simulated shoots of 1920x1080 with trackers that are off by 0.3 mm and 0.05 degrees along and about
each axis. The accuracy is the median of five shoots, the rest is of the first.
"""

import json
import os
import pathlib
import statistics
import subprocess
import sys
import tempfile
import time

import numpy as np

PROGRAM = pathlib.Path(sys.argv[1]).resolve()
SIZES = [int(text) for text in sys.argv[2:]] or [12, 25, 50, 100, 200, 400]
SEEDS = range(1, 6)
NOISE = ["--tracker-noise-mm", "0.3", "--tracker-noise-degrees", "0.05"]


def off(transform, truth):
    """Millimetres and degrees between two transforms of 16 numbers."""
    a, b = (np.array(t).reshape(4, 4) for t in (transform, truth))
    # Not by the cosine, which tells small angles in steps.
    angle = 2 * np.arcsin(np.linalg.norm(a[:3, :3] - b[:3, :3]) / np.sqrt(8))
    return 1000 * np.linalg.norm(a[:3, 3] - b[:3, 3]), np.degrees(angle)


def run(command):
    """Seconds, and MB at the peak. Whatever it ends with: 99 is a result, too."""
    begin = time.perf_counter()
    child = subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    usage = os.wait4(child.pid, 0)[2]
    return time.perf_counter() - begin, usage.ru_maxrss / 1024


print("| photographs | s | of it the cross-check and the page | peak memory, MB | result off the truth | cross-check off the truth |")
print("|---|---|---|---|---|---|")
for photographs in SIZES:
    errors = {"result": [], "crossCheck": []}
    for seed in SEEDS:
        with tempfile.TemporaryDirectory() as name:
            folder = pathlib.Path(name) / "shoot"
            subprocess.run([PROGRAM, "simulate", folder, "--photographs", str(photographs), "--seed", str(seed), *NOISE],
                           stdout=subprocess.DEVNULL, check=True)
            if seed == SEEDS[0]:
                seconds, megabytes = run([PROGRAM, "calibrate", "--config", folder / "shoot.toml"])
                result = json.loads((folder / "result.json").read_text(encoding="utf-8"))
                after = run([PROGRAM, "crosscheck", "--log", result["log"]])[0]
                after += run([PROGRAM, "report", "--result", folder / "result.json", "--out", folder / "page.html"])[0]
            else:
                run([PROGRAM, "calibrate", "--config", folder / "shoot.toml", "--no-report"])
                result = json.loads((folder / "result.json").read_text(encoding="utf-8"))
            truth = json.loads((folder / "truth.json").read_text(encoding="utf-8"))["transformCamTc"]
            errors["result"].append(off(result["transformCamTc"], truth))
            errors["crossCheck"].append(off(result["crossCheck"]["transformCamTc"], truth))
    cells = [" mm, ".join(f"{statistics.median(figures):.{digits}f}" for figures, digits in zip(zip(*errors[key]), (2, 3)))
             + "°" for key in errors]
    print(f"| {photographs} | {seconds:.2f} | {after:.2f} | {megabytes:.0f} | {cells[0]} | {cells[1]} |", flush=True)
