"""Calibrates one simulated shoot with the programs of two systems and compares results and logs.

Usage: compare_results.py LINUX_PROGRAM WINDOWS_PROGRAM
"""

import json
import pathlib
import re
import subprocess
import sys
import tempfile

LINUX, WINDOWS = sys.argv[1:]
# Image decoding and linear algebra of the two systems differ in the order of their operations.
TOLERANCE = 1e-5


def run(program, *arguments):
    subprocess.run([program, *arguments], check=True, stdout=subprocess.DEVNULL)


def difference(a, b, where="result"):
    """The largest difference between two numbers in the same place, relative if they exceed 1."""
    if isinstance(a, dict):
        assert a.keys() == b.keys(), where
        return max((difference(a[key], b[key], f"{where} {key}") for key in a), default=(0, where))
    if isinstance(a, list):
        assert len(a) == len(b), where
        return max((difference(x, y, f"{where} {i}") for i, (x, y) in enumerate(zip(a, b))),
                   default=(0, where))
    if isinstance(a, float):
        return abs(a - b) / max(1, abs(a)), where
    assert a == b, f"{where}: {a} and {b}"
    return 0, where


def read_result(folder):
    """The result without its time and durations, and with paths that do not depend on folder and system."""
    result = json.loads((folder / "result.json").read_text(encoding="utf-8"))
    result.pop("time")
    result.pop("seconds")
    return same_paths(result, folder)


def same_paths(value, folder):
    if isinstance(value, dict):
        return {key: same_paths(element, folder) for key, element in value.items()}
    if isinstance(value, list):
        return [same_paths(element, folder) for element in value]
    if isinstance(value, str):
        path = re.sub(r"\bZ:(?=/)", "", value.replace("\\", "/"))
        return re.sub(r"/log_[\d.-]+\.txt$", "/log.txt", path.replace(str(folder), "SHOOT"))
    return value


def read_log(folder, line_end):
    """The text of the messages, and their numbers. Every line must have the system's line end."""
    content = next(folder.glob("**/log_*.txt")).read_bytes()
    assert content.count(b"\n") == content.count(line_end) > 20, f"line ends in {folder}"
    lines = content.decode("utf-8").replace("\r\n", "\n").splitlines()
    text = "\n".join(line.split("\t", 1)[-1] for line in lines)
    number = r"-?\d+\.\d{6}\b"
    return re.sub(number, "#", text), [float(found) for found in re.findall(number, text)]


with tempfile.TemporaryDirectory(prefix="trackedcam_撮影é_") as name:
    folders = [pathlib.Path(name) / system for system in ("linux", "windows")]
    run(LINUX, "simulate", folders[0], "--photographs", "16")
    subprocess.run(["cp", "-R", *folders], check=True)
    for program, folder in zip((LINUX, WINDOWS), folders):
        run(program, "calibrate", "--config", folder / "shoot.toml")
    results = [read_result(folder) for folder in folders]
    logs = [read_log(folder, end) for folder, end in zip(folders, (b"\n", b"\r\n"))]

largest, where = difference(*results)
print(f"results: the largest difference is {largest:.3g}, in {where}")
for lines in zip(logs[0][0].splitlines(), logs[1][0].splitlines()):
    assert lines[0] == lines[1], f"the logs differ: {lines}"
assert len(logs[0][1]) == len(logs[1][1]), "one log is longer"
logged, _ = difference(logs[0][1], logs[1][1])
print(f"logs: the largest difference of {len(logs[0][1])} numbers is {logged:.3g}")
sys.exit(0 if max(largest, logged) <= TOLERANCE else 1)
