#!/usr/bin/env python3
"""Measures time, peak memory and accuracy of a calibration with 12 to 400 photographs.

Usage: growth_benchmark.py PROGRAM [PHOTOGRAPHS...]

The shoots are simulated, 1920x1080, with tracker noise of 0.3 mm along and 0.05 degrees about each axis. The
accuracy is the median of five shoots; time and memory are those of the first one.
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
    # The cosine would resolve small angles in steps only.
    angle = 2 * np.arcsin(np.linalg.norm(a[:3, :3] - b[:3, :3]) / np.sqrt(8))
    return 1000 * np.linalg.norm(a[:3, 3] - b[:3, 3]), np.degrees(angle)


def run(command):
    """Runs a command, whatever its exit status, and returns its seconds and its peak memory in MB."""
    begin = time.perf_counter()
    child = subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    usage = os.wait4(child.pid, 0)[2]
    return time.perf_counter() - begin, usage.ru_maxrss / 1024


print("| photographs | total, s | of which cross-check and page, s | peak memory, MB | result off | cross-check off |")
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
                after = result["seconds"]["crossCheck"] + result["seconds"]["page"]
            else:
                run([PROGRAM, "calibrate", "--config", folder / "shoot.toml", "--no-report"])
                result = json.loads((folder / "result.json").read_text(encoding="utf-8"))
            truth = json.loads((folder / "truth.json").read_text(encoding="utf-8"))["transformCamTc"]
            errors["result"].append(off(result["transformCamTc"], truth))
            errors["crossCheck"].append(off(result["crossCheck"]["transformCamTc"], truth))
    cells = [" mm, ".join(f"{statistics.median(values):.{digits}f}" for values, digits in zip(zip(*errors[key]), (2, 3)))
             + "°" for key in errors]
    print(f"| {photographs} | {seconds:.2f} | {after:.2f} | {megabytes:.0f} | {cells[0]} | {cells[1]} |", flush=True)
