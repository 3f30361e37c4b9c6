"""Measures how long a calibration takes on two processors, alone and beside three busy loops.

Fails if the calibration takes more than three times as long beside the loops: five programs that share two
processors would need about that long, and this one must not also wait for its own threads.

Usage: contention.py PROGRAM [RUNS]

RUNS is the number of runs of each kind, of which the median counts (default: 3).
"""

import os
import pathlib
import statistics
import subprocess
import sys
import tempfile
import time

LOOPS = 3
MOST = 3.0
PROGRAM = os.path.abspath(sys.argv[1])
RUNS = int(sys.argv[2]) if len(sys.argv) > 2 else 3
PROCESSORS = sorted(os.sched_getaffinity(0))[:2]


def seconds(shoot):
    times = []
    for _ in range(RUNS):
        began = time.monotonic()
        subprocess.run([PROGRAM, "calibrate", "--config", shoot / "shoot.toml", "--no-report"], check=True,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        times.append(time.monotonic() - began)
    return statistics.median(times)


os.sched_setaffinity(0, PROCESSORS)  # children get the same
print(f"processors {PROCESSORS}, load before {os.getloadavg()[0]:.1f}")
worst = 0
with tempfile.TemporaryDirectory() as folder:
    for photographs in [20, 60, 120]:
        shoot = pathlib.Path(folder) / str(photographs)
        subprocess.run([PROGRAM, "simulate", shoot, "--photographs", str(photographs), "--image", "640x360"],
                       check=True, stdout=subprocess.DEVNULL)
        idle = seconds(shoot)
        loops = [subprocess.Popen([sys.executable, "-c", "while True: pass"]) for _ in range(LOOPS)]
        try:
            busy = seconds(shoot)
        finally:
            for loop in loops:
                loop.kill()
                loop.wait()
        worst = max(worst, busy / idle)
        print(f"{photographs:4} photographs: {idle:6.2f} s alone, {busy:6.2f} s beside {LOOPS} busy loops, "
              f"{busy / idle:.2f} times")
sys.exit(0 if worst <= MOST else f"more than {MOST:.0f} times")
