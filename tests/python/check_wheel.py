"""Builds the wheel and tests the package in it, without other files of the build.

Usage: check_wheel.py BUILD PYTEST TESTS
"""

import os
import pathlib
import subprocess
import sys
import tempfile
import zipfile

build, pytest, tests = pathlib.Path(sys.argv[1]), sys.argv[2], sys.argv[3]
for old in (build / "python").glob("*.whl"):
    old.unlink()
subprocess.run(["cmake", "--build", build, "--target", "trackedcam_wheel"], check=True, stdout=subprocess.DEVNULL)
wheel = next((build / "python").glob("trackedcam-*-py3-none-*.whl"))
assert "any" not in wheel.stem.split("-")[-1], wheel
with tempfile.TemporaryDirectory() as scratch:
    with zipfile.ZipFile(wheel) as archive:
        archive.extractall(scratch)
        names = set(archive.namelist())
    for file in ["__init__.py", "py.typed", "libtrackedcam_c.so.1"]:
        assert f"trackedcam/{file}" in names, f"{file} is missing in {sorted(names)}"
    environment = {**os.environ, "PYTHONPATH": scratch}
    environment.pop("TRACKEDCAM_C_LIBRARY", None)
    subprocess.run([pytest, "-q", "-p", "no:cacheprovider", "-k", "truth or programs", tests], check=True,
                   env=environment, cwd=scratch, stdout=subprocess.DEVNULL)
print(f"{wheel.name} holds a package that works")
