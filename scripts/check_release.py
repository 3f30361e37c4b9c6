#!/usr/bin/env python3
"""Installs files of a release in empty folders, as a user would, and calibrates a simulated shoot with each.

Usage: check_release.py FILE...

A .deb is unpacked into a root of its own; its dependencies are those of this machine. A wheel for Linux is
installed by pip in an environment of its own, without a network, with this machine's NumPy. Windows
files run under Wine; its wheel has no Python there, so a program in C calls the library in it.
"""

import json
import os
import pathlib
import re
import subprocess
import sys
import tarfile
import tempfile
import zipfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
WINE = ROOT / "scripts/wine.sh"
VERSION = re.search(r"^  VERSION (\S+)$", (ROOT / "CMakeLists.txt").read_text(encoding="utf-8"), re.MULTILINE)[1]
SHOOT = ["simulate", "shoot", "--photographs", "14", "--image", "960x540"]
BY_PYTHON = """import json, trackedcam
report = trackedcam.calibrate("shoot/tracker_data.csv", sensor_mm=(36, 20.25), board=(9, 6), square_m=0.03,
                              log_folder="log")
print(json.dumps([list(row) for row in report.transform_cam_tc]))
"""


def run(*command, cwd, **variables):
    """Runs a command with nothing of this project in its environment, and returns its output."""
    environment = {name: value for name, value in os.environ.items()
                   if name not in ("LD_LIBRARY_PATH", "PYTHONPATH", "TRACKEDCAM_C_LIBRARY")}
    done = subprocess.run([str(word) for word in command], cwd=cwd, env={**environment, **variables}, check=False,
                          encoding="utf-8", stdout=subprocess.PIPE, stderr=subprocess.PIPE)
    if done.returncode != 0:
        sys.exit(f"{command} failed with {done.returncode}:\n{done.stdout}{done.stderr}")
    return done.stdout


def check_transform(found, folder):
    """The camera tracker must be where the simulator put it, within a millimetre."""
    true = json.loads((folder / "shoot/truth.json").read_text(encoding="utf-8"))["transformCamTc"]
    for index in (3, 7, 11):
        assert abs(found[index] - true[index]) < 0.001, f"{found} is not the transform of the shoot, {true}"


def check_program(folder, *program):
    printed = run(*program, "--version", cwd=folder)
    assert printed.startswith(f"trackedcam {VERSION}\n"), printed
    run(*program, *SHOOT, cwd=folder)
    run(*program, "calibrate", "--config", "shoot/shoot.toml", cwd=folder)
    check_transform(json.loads((folder / "shoot/result.json").read_text(encoding="utf-8"))["transformCamTc"], folder)


def check_python(folder, python, **variables):
    """Needs a shoot in the folder."""
    rows = json.loads(run(python, "-c", BY_PYTHON, cwd=folder, **variables).splitlines()[-1])
    check_transform([value for row in rows for value in row], folder)


def simulate(folder, programs):
    """A shoot for the files that hold no program, by one that does."""
    run(*programs[0], *SHOOT, cwd=folder)


def check(file, folder, programs, headers):
    """Installs the file in the folder and runs it; adds to the programs and headers for other files."""
    windows = "win" in file.stem.lower()
    if file.suffix == ".deb":
        root = folder / "root"
        # Both packages in one root: that for Python needs the other one.
        for deb in file.parent.glob("*.deb"):
            run("dpkg-deb", "--extract", deb, root, cwd=folder)
        if file.name.startswith("python3-"):
            run(root / "usr/bin/trackedcam", *SHOOT, cwd=folder)
            check_python(folder, "/usr/bin/python3", PYTHONPATH=str(root / "usr/lib/python3/dist-packages"),
                         TRACKEDCAM_C_LIBRARY=str(root / "usr/lib/libtrackedcam_c.so.1"))
        else:
            check_program(folder, root / "usr/bin/trackedcam")
    elif file.name.endswith(".tar.gz"):
        with tarfile.open(file) as archive:
            archive.extractall(folder)
        programs.append([next(folder.glob("trackedcam-*/bin/trackedcam"))])
        check_program(folder, *programs[-1])
    elif file.suffix == ".zip":
        with zipfile.ZipFile(file) as archive:
            archive.extractall(folder)
        programs.append([WINE, next(folder.glob("trackedcam-*/bin/trackedcam.exe"))])
        headers.append(next(folder.glob("trackedcam-*/include")))
        check_program(folder, *programs[-1])
    elif windows:
        with zipfile.ZipFile(file) as archive:
            archive.extractall(folder)
        assert file.stem.endswith("-py3-none-win_amd64"), file.name
        simulate(folder, programs)
        run("x86_64-w64-mingw32-gcc-posix", "-I", headers[0], ROOT / "examples/04_from_c.c",
            folder / "trackedcam/trackedcam_c.dll", "-o", folder / "trackedcam/from_c.exe", cwd=folder)
        (folder / "log").mkdir()
        # Runs in the folder of the shoot, as the example asks.
        printed = run(WINE, folder / "trackedcam/from_c.exe", "tracker_data.csv", "../log", cwd=folder / "shoot")
        check_transform_line(printed, folder)
    else:
        run("/usr/bin/python3", "-m", "venv", "--system-site-packages", "venv", cwd=folder)
        python = folder / "venv/bin/python"
        run(python, "-m", "pip", "install", "--no-index", "--no-deps", file, cwd=folder)
        simulate(folder, programs)
        check_python(folder, python)


def check_transform_line(printed, folder):
    """Checks the line 'camera tracker at X Y Z m' of the example in C."""
    words = next(line for line in printed.splitlines() if line.startswith("camera tracker at")).split()
    found = dict(zip((3, 7, 11), map(float, words[3:6])))
    check_transform(found, folder)


def main():
    # Those that hold a program first: they simulate the shoots for the others.
    files = sorted((pathlib.Path(name).resolve() for name in sys.argv[1:]), key=lambda file: file.suffix == ".whl")
    assert files, __doc__
    programs, headers = [], []
    with tempfile.TemporaryDirectory() as scratch:
        for number, file in enumerate(files):
            folder = pathlib.Path(scratch) / str(number)
            folder.mkdir()
            check(file, folder, programs, headers)
            print(f"{file.name} works", flush=True)


main()
