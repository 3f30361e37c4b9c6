"""Makes the zip for Windows, unpacks it, and builds and runs the examples with its files.

Usage: check_zip.py BUILD SOURCE
"""

import os
import pathlib
import shutil
import tempfile
import zipfile

from notices import check_notices
from stranger import BUILD, SOURCE, check_c_examples, check_examples, check_loading, run

FILES = {
    "bin/trackedcam.dll",
    "bin/trackedcam.exe",
    "bin/trackedcam_c.dll",
    "include/trackedcam/trackedcam.h",
    "include/trackedcam/trackedcam_c.h",
    "include/trackedcam/trackedcam.hpp",
    "lib/trackedcam_c.lib",
    "lib/libtrackedcam_c.dll.a",
    "lib/libtrackedcam.dll.a",
    "lib/cmake/trackedcam/trackedcamConfig.cmake",
    "lib/cmake/trackedcam/trackedcamConfigVersion.cmake",
    "share/doc/trackedcam/LICENSE",
    "share/doc/trackedcam/THIRD_PARTY_NOTICES",
    "share/doc/trackedcam/README.md",
    "share/doc/trackedcam/docs/windows.md",
    "share/doc/trackedcam/examples/01_calibrate.cpp",
}

with tempfile.TemporaryDirectory() as name:
    scratch, build = pathlib.Path(name), pathlib.Path(name) / "build"
    run("cpack", "-G", "ZIP", "-B", scratch / "packages", cwd=BUILD)
    with zipfile.ZipFile(next((scratch / "packages").glob("*.zip"))) as archive:
        archive.extractall(scratch)
    prefix = next(scratch.glob("trackedcam-*"))
    missing = sorted(file for file in FILES if not (prefix / file).is_file())
    assert not missing, f"{missing} are missing"
    check_notices(prefix / "share/doc/trackedcam", prefix / "bin/trackedcam", windows=True)

    # The toolchain looks for packages in the unpacked folder.
    run("cmake", "-S", SOURCE / "examples", "-B", build, "-G", "Ninja",
        f"-DCMAKE_TOOLCHAIN_FILE={os.environ['TOOLCHAIN']}",
        f"-DTRACKEDCAM_WINDOWS_DEPENDENCIES={prefix}")
    run("cmake", "--build", build)
    shutil.copy(prefix / "bin/trackedcam.dll", build)
    shutil.copy(prefix / "bin/trackedcam_c.dll", build)
    check_examples(build, prefix / "bin/trackedcam", scratch)
    check_c_examples(build, scratch)
    check_loading(build, prefix / "bin/trackedcam.dll", scratch)
print("the zip holds what it should, and the examples build and run")
