"""Shared by the checks of other languages: a shoot, the program's result, and a comparison of results."""

import pathlib
import re
import shutil
import subprocess
import sys


def run(*command, **options):
    """Runs a command and returns what it prints; a command that fails ends the check."""
    done = subprocess.run([str(word) for word in command], stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                          encoding="utf-8", check=False, **options)
    if done.returncode != 0:
        sys.exit(f"{command} failed with {done.returncode}:\n{done.stdout}{done.stderr}")
    return done.stdout


def simulate(program, scratch):
    run(program, "simulate", scratch / "shoot", "--photographs", "20", "--image", "640x360")
    return scratch / "shoot"


def calibrate_by_program(program, shoot, log):
    """The text of the program's result, with the mounting found from the shoot.

    The log folder is absolute, or relative to that of the shoot. It is removed again, so that the folder of the next
    run has the same name.
    """
    run(program, "calibrate", "--data", "tracker_data.csv", "--sensor", "36x20.25", "--board", "9x6", "--square",
        "0.03", "--log-folder", log, "--no-report", cwd=shoot)
    # That of the run's folder, because one that the user names suggests commands.
    text = max((shoot / log).glob("run_*/result.json")).read_text(encoding="utf-8")
    shutil.rmtree(shoot / log)
    return text


def without_time(text):
    """Removes the time and the durations, which alone differ between runs."""
    text = re.sub(r"log_[-.0-9]+\.txt", "log_TIME.txt", text)
    text = re.sub(r'"seconds": \{[^}]*\}', '"seconds": {}', text)
    return re.sub(r'"time": "[^"]*"', '"time": ""', text)


def require_same(file, expected):
    found = without_time(pathlib.Path(file).read_text(encoding="utf-8"))
    expected = without_time(expected)
    for number, (a, b) in enumerate(zip(found.splitlines(), expected.splitlines()), 1):
        if a != b:
            sys.exit(f"line {number} of the result is\n{a}\nand the program's\n{b}")
    if found != expected:
        sys.exit("one result is longer than the other")
