"""Pairs a film file with a recording: frames and times by the line of the documentation.

Usage: check_film.py SOURCE_ROOT PROGRAM

The film leaves out every seventh frame, so only its own time stamps are right.
"""

import json
import pathlib
import re
import shlex
import subprocess
import sys
import tempfile

root, program = pathlib.Path(sys.argv[1]), sys.argv[2]
page = (root / "docs/from-a-film-and-a-recording.md").read_text(encoding="utf-8")
(line,) = re.findall(r"^    (ffmpeg .*)$", page, re.MULTILINE)
DELAY_S = 0.060
FIRST_S = 1  # of the first frame; a film file begins at 0


def run(folder, *command):
    done = subprocess.run(command, cwd=folder, check=False, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          encoding="utf-8", errors="replace")
    if done.returncode != 0:
        sys.exit(f"{command} failed:\n{done.stdout}")


with tempfile.TemporaryDirectory() as name:
    folder = pathlib.Path(name)
    run(folder, program, "simulate", "recorded", "--recording", "--image", "640x360", "--seconds", "24", "--fps", "12.5",
        "--delay-ms", str(1000 * DELAY_S))
    run(folder, "ffmpeg", "-v", "error", "-framerate", "12.5", "-i", "recorded/frames/%06d.jpg", "-vf",
        "select=not(eq(mod(n\\,7)\\,3))", "-vsync", "vfr", "-c:v", "mpeg4", "-q:v", "1", "film.mp4")
    (folder / "frames").mkdir()
    run(folder, *shlex.split(line))
    run(folder, program, "pair", "--camera-poses", "recorded/camera_poses.txt", "--chart-poses",
        "recorded/chart_poses.txt", "--frames", "frames", "--times", "frames/times.txt", "--board", "9x6", "--square",
        "0.03", "--out", "shoot")
    found = json.loads((folder / "shoot/pairing.json").read_text(encoding="utf-8"))
    frames = len(found["frames"])
    assert 250 <= frames <= 260, f"{frames} frames of 300 without every seventh"
    off_ms = 1000 * (found["delaySeconds"] - FIRST_S - DELAY_S)
    assert abs(off_ms) < 1.5, f"the delay is off by {off_ms:.2f} ms"
    run(folder, program, "calibrate", "--config", "shoot/shoot.toml")
print(f"the delay of {frames} frames is off by {off_ms:.2f} ms")
