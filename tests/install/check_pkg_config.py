"""Builds the examples against an installed tree with pkg-config, and runs them.

Usage: check_pkg_config.py BUILD SOURCE
"""

import os
import pathlib
import shlex
import tempfile

from stranger import SOURCE, check_c_examples, check_examples, install, run

with tempfile.TemporaryDirectory() as name:
    scratch = pathlib.Path(name)
    install(scratch / "prefix")
    os.environ["PKG_CONFIG_PATH"] = str(scratch / "prefix/lib/pkgconfig")
    os.environ["LD_LIBRARY_PATH"] = str(scratch / "prefix/lib")
    flags = shlex.split(run("pkg-config", "--cflags", "--libs", "trackedcam >= 1.1"))
    for source in (SOURCE / "examples").glob("0[12]_*.cpp"):
        # Hosts need C++11 only.
        run(os.environ["CXX"], *shlex.split(os.environ["CXXFLAGS"]), "-std=c++11", source, *flags, "-o",
            scratch / f"example_{source.stem}")
    check_examples(scratch, scratch / "prefix/bin/trackedcam", scratch)

    # Hosts in C, and in C++17 of any compiler, link the C library only.
    flags = shlex.split(run("pkg-config", "--cflags", "--libs", "trackedcam_c >= 1.1"))
    assert "-ltrackedcam" not in flags, flags
    run(os.environ["CC"], *shlex.split(os.environ["CXXFLAGS"]), "-std=c99", "-pedantic-errors",
        SOURCE / "examples/04_from_c.c", *flags, "-o", scratch / "example_04_from_c")
    source = SOURCE / "examples/06_from_cpp.cpp"
    run(os.environ["CXX"], *shlex.split(os.environ["CXXFLAGS"]), "-std=c++17", source, *flags, "-o",
        scratch / "example_06_from_cpp")
    check_c_examples(scratch, scratch)
    if "fsanitize" not in os.environ["CXXFLAGS"]:
        run("clang++", "-std=c++20", "-Wall", "-Wextra", "-Werror", source, *flags, "-o",
            scratch / "example_06_from_cpp")
        check_c_examples(scratch, scratch)
print("the examples build and run")
