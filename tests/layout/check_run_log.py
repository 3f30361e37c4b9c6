"""Checks that docs/run-log.md agrees with the texts in the sources and with the log lines of real runs.

Usage: check_run_log.py SOURCE_ROOT HOST_PROGRAM
"""

import pathlib
import re
import subprocess
import sys
import tempfile

# Texts in the sources that are never logged.
SILENT = {"%Y-%m-%d %H:%M:%S", "%Y-%m-%d-%H.%M.%S", "Time,", "bad conversion", "date", "inf", "nan", "now",
          "rb", "wb", "//Reproject_"}
# Its messages are on the page of the result codes.
MESSAGES = "src/core/result_code.cpp"
# What a placeholder of the page matches; all others match a number.
PLACEHOLDERS = {
    "{photograph}": r"\S*/\S+", "{numbers}": r"[-\d. ]+", "{message}": ".*", "{version}": r"[\d.]+",
    "{text}": ".*", "{address}": r"\S+", "{function}": r"\w+", "{argument}": r"\w+",
    "{engine}": r"\w+", "{list}": r"\w+"}
NUMBER = r"(?:-?\d+(?:\.\d+)?|-?nan|-?inf)"

root, program = map(pathlib.Path, sys.argv[1:])
page = (root / "docs/run-log.md").read_text(encoding="utf-8")
templates = re.findall(r"^\| `([^`]+)` \|", page.split("\n## A log that stops\n")[0], re.MULTILINE)


def pattern(template):
    parts = re.split(r"(\{\w+\})", template)
    return re.compile("".join(PLACEHOLDERS.get(part, NUMBER) if part.startswith("{") else
                              re.escape(part) for part in parts))


patterns = [pattern(template) for template in templates]


def is_line(text):
    return any(each.fullmatch(text) for each in patterns)


def literals():
    """The string literals in the sources."""
    found = set()
    for path in sorted((root / "src").rglob("*.cpp")):
        code = re.sub(r"^\s*#include.*|//[^\"\n]*$", "", path.read_text(encoding="utf-8"),
                      flags=re.MULTILINE)
        if path == root / MESSAGES:
            code = code[code.index("LogError("):]
        found |= set(re.findall(r'"((?:[^"\\]|\\.)*)"', code))
    return found - {""}


def check_texts(texts):
    """Each text in the sources is on the page, as a line or as part of one."""
    for text in sorted(texts - SILENT):
        if re.search("[A-Za-z]{2}", text) and text not in page and not is_line(text):
            yield f'"{text}" is in the sources but not on the page'
    for text in sorted(SILENT - texts):
        yield f'"{text}" is no longer in the sources'


def check_templates(texts):
    """The fixed parts of each line on the page consist of texts in the sources."""
    fixed = re.compile("(?:" + "|".join(map(re.escape, texts)) + ")*")
    for template in templates:
        for fragment in re.split(r"\{\w+\}", template):
            if not fixed.fullmatch(fragment):
                yield f'`{template}` is on the page, but "{fragment}" is not in the sources'


def check_run(last, *options):
    """Each line that a run logs is on the page, and the last one is the expected one."""
    with tempfile.TemporaryDirectory() as folder:
        subprocess.run([program, "simulate", folder, "--image=640x360", *options], check=True,
                       stdout=subprocess.DEVNULL)
        subprocess.run([program, "calibrate", f"--config={folder}/shoot.toml"],
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        (log,) = pathlib.Path(folder).glob("log/run_*/log_*.txt")
        lines = [line.split("\t", 1)[1] for line in log.read_text(encoding="utf-8").splitlines()]
    for line in lines:
        if not is_line(line):
            yield f'a run logged "{line}", which is not on the page'
    if not lines[-1].startswith(last):
        yield f'a run ended with "{lines[-1]}"'


faults = [
    *check_texts(literals()),
    *check_templates(literals()),
    *check_run("Camera and Tracker Calibration successful.", "--photographs=16", "--missing=1",
               "--not-an-image=1", "--without-chart=1", "--outliers=2"),
    *check_run("Error code 4: ", "--photographs=12", "--missing=1"),
    *check_run("Error code 6: ", "--photographs=14", "--tracker-noise-mm=40"),
]
print("\n".join(faults) or f"{len(templates)} lines of the page agree with the sources and the runs")
sys.exit(0 if templates and not faults else 1)
