"""Builds the examples against an installed tree with find_package, and runs them.

Usage: check_find_package.py BUILD SOURCE
"""

import pathlib
import re
import tempfile

from stranger import SOURCE, check_c_examples, check_examples, check_loading, install, run

with tempfile.TemporaryDirectory() as name:
    scratch = pathlib.Path(name)
    prefix, build = scratch / "prefix", scratch / "build"
    install(prefix)
    for file in (prefix / "lib/cmake/trackedcam").iterdir():
        for private in ["opencv", "Eigen"]:
            assert private not in file.read_text(encoding="utf-8"), f"{file} names {private}"

    # Moved, like a package that is unpacked in another folder.
    prefix = prefix.rename(scratch / "moved")
    run("cmake", "-S", SOURCE / "examples", "-B", build, "-G", "Ninja", f"-DCMAKE_PREFIX_PATH={prefix}")
    run("cmake", "--build", build)
    check_examples(build, prefix / "bin/trackedcam", scratch)
    check_c_examples(build, scratch)
    check_loading(build, prefix / "lib/libtrackedcam.so.1", scratch)

    # find_package refuses other versions and unknown components.
    major, minor, patch = map(int, re.search(
        r"VERSION (\d+)\.(\d+)\.(\d+)\n", (SOURCE / "CMakeLists.txt").read_text(encoding="utf-8")).groups())
    (scratch / "newer").mkdir()
    (scratch / "newer/CMakeLists.txt").write_text(
        "cmake_minimum_required(VERSION 3.25)\nproject(newer LANGUAGES NONE)\n"
        f"foreach(version {major} {major}.0 {major}.{minor} {major}.{minor}.{patch})\n"
        "  find_package(trackedcam ${version} CONFIG REQUIRED)\n"
        "endforeach()\n"
        "find_package(trackedcam CONFIG REQUIRED COMPONENTS c)\n"
        "find_package(trackedcam CONFIG QUIET COMPONENTS d)\n"
        "if(trackedcam_FOUND)\n  message(FATAL_ERROR \"a component that is not there was found\")\nendif()\n"
        f"foreach(version {major - 1}.9 {major}.{minor + 1} {major + 1})\n"
        "  find_package(trackedcam ${version} CONFIG QUIET)\n"
        "  if(trackedcam_FOUND)\n    message(FATAL_ERROR \"${version} was taken\")\n  endif()\n"
        "endforeach()\n", encoding="utf-8")
    run("cmake", "-S", scratch / "newer", "-B", scratch / "newer/build", f"-DCMAKE_PREFIX_PATH={prefix}")
print("the examples build and run")
