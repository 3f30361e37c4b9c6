"""Helpers of the checks: install the tree, simulate a shoot, run the examples."""

import os
import pathlib
import re
import subprocess
import sys

BUILD, SOURCE = (pathlib.Path(argument) for argument in sys.argv[1:3])


def run(*command, **options):
    """Runs a command and returns its output; a failure ends the check."""
    done = subprocess.run([str(word) for word in command], stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, encoding="utf-8", check=False, **options)
    if done.returncode != 0:
        sys.exit(f"{command} failed with {done.returncode}:\n{done.stdout}")
    return done.stdout


def run_program(program, *arguments, **options):
    """Runs a built program, with the emulator if it is for another system."""
    if "EMULATOR" in os.environ:
        return run(os.environ["EMULATOR"], f"{program}.exe", *arguments, **options)
    return run(program, *arguments, **options)


def install(prefix):
    run("cmake", "--install", BUILD, "--prefix", prefix)


def check_examples(folder, program, scratch):
    """Runs the built examples in a folder on a shoot simulated by the installed program."""
    run_program(program, "simulate", scratch / "shoot", "--photographs", "14", "--image", "960x540")
    (scratch / "log").mkdir()
    calibrated = run_program(folder / "example_01_calibrate", scratch / "shoot/tracker_data.csv",
                             scratch / "log", cwd=scratch / "shoot")
    if not re.search(r"^\d+\.\d mm, camera tracker at -?\d", calibrated, re.MULTILINE):
        sys.exit(f"01_calibrate prints\n{calibrated}")
    exported = run_program(folder / "example_02_export_to_engine", scratch / "log")
    for line in ["location 12.00 2.00 -8.00 cm", "roll 5.00, pitch 10.00, yaw 30.00 degrees"]:
        if line not in exported.splitlines():
            sys.exit(f"02_export_to_engine does not print {line} but\n{exported}")


def check_c_examples(folder, scratch):
    """Runs the built examples of the C library on the shoot of the others; they find the mounting themselves."""
    for example in ["04_from_c", "06_from_cpp"]:
        printed = run_program(folder / f"example_{example}", "tracker_data.csv", scratch / f"log_{example}",
                              cwd=scratch / "shoot")
        if not re.search(r"^camera tracker at 0\.01\d\d -0\.10\d\d -0\.04\d\d m$", printed, re.MULTILINE):
            sys.exit(f"{example} prints\n{printed}")
    for file in ["result.json", "report.html"]:
        if not (scratch / "log_06_from_cpp" / file).is_file():
            sys.exit(f"06_from_cpp writes no {file}")


def check_loading(folder, library, scratch):
    """Runs the built example that loads the installed library at run time."""
    printed = run_program(folder / "example_03_load_at_run_time", library, scratch / "log")
    if "100 rounds of loading, calling and unloading" not in printed:
        sys.exit(f"03_load_at_run_time prints\n{printed}")
