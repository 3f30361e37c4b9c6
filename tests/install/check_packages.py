"""Makes the packages, installs the .deb packages into an empty root, and checks the files.

Usage: check_packages.py BUILD SOURCE
"""

import os
import pathlib
import re
import tarfile
import tempfile

from notices import check_notices
from stranger import BUILD, run

FILES = {
    "bin/trackedcam",
    "include/trackedcam/trackedcam.h",
    "include/trackedcam/trackedcam_c.h",
    "include/trackedcam/trackedcam.hpp",
    "lib/libtrackedcam_c.so",
    "lib/libtrackedcam_c.so.1",
    "lib/pkgconfig/trackedcam_c.pc",
    "lib/libtrackedcam.so",
    "lib/libtrackedcam.so.1",
    "lib/cmake/trackedcam/trackedcamConfig.cmake",
    "lib/cmake/trackedcam/trackedcamConfigVersion.cmake",
    "lib/pkgconfig/trackedcam.pc",
    "share/doc/trackedcam/LICENSE",
    "share/doc/trackedcam/THIRD_PARTY_NOTICES",
    "share/doc/trackedcam/copyright",
    "share/doc/trackedcam/README.md",
    "share/doc/trackedcam/docs/conventions.md",
    "share/doc/trackedcam/examples/01_calibrate.cpp",
    "share/man/man1/trackedcam.1",
}
PYTHON_FILES = {"lib/python3/dist-packages/trackedcam/__init__.py", "lib/python3/dist-packages/trackedcam/py.typed",
                "share/doc/python3-trackedcam/copyright"}


def check_content(prefix):
    missing = sorted(file for file in FILES if not (prefix / file).is_file())
    assert not missing, f"{missing} are missing"
    elsewhere = [file for file in prefix.rglob("*")
                 if file.relative_to(prefix).parts[0] not in ("bin", "include", "lib", "share")]
    assert not elsewhere, f"{elsewhere} are in no standard folder"
    for library in ["trackedcam", "trackedcam_c"]:
        told = run("objdump", "-p", prefix / f"lib/lib{library}.so")
        assert f"SONAME               lib{library}.so.1\n" in told
    assert run(prefix / "bin/trackedcam", "--version").startswith("trackedcam 1.")
    check_notices(prefix / "share/doc/trackedcam", prefix / "bin/trackedcam")


def check_deb(deb, root):
    depends = run("dpkg-deb", "--field", deb, "Depends")
    for library in ["core", "imgproc", "imgcodecs", "calib3d"]:
        assert f"libopencv-{library}4" in depends, f"{library} is missing in {depends}"
    for foreign in ["dev", "eigen", "gtest", "cli11"]:
        assert foreign not in depends, f"{foreign} is in {depends}"
    assert run("dpkg-deb", "--field", deb, "Recommends").strip() == "libopenblas0-pthread"

    # The root has no other packages, so dependencies are not checked and the package is only unpacked.
    for folder in ["info", "updates", "triggers"]:
        (root / "var/lib/dpkg" / folder).mkdir(parents=True)
    (root / "var/lib/dpkg/status").touch()
    run("dpkg", f"--root={root}", "--force-not-root", "--force-depends", "--log=/dev/null", "--unpack", deb)
    assert "Status: install ok unpacked" in run("dpkg", f"--root={root}", "--status", "trackedcam")
    check_content(root / "usr")


def check_python_deb(deb, root):
    """Checks the files of the Python package, unpacked into the same root."""
    depends = run("dpkg-deb", "--field", deb, "Depends")
    for package in ["python3 (>= 3.9)", "python3-numpy", "trackedcam (= "]:
        assert package in depends, f"{package} is missing in {depends}"
    assert run("dpkg-deb", "--field", deb, "Architecture").strip() == "all"
    run("dpkg", f"--root={root}", "--force-not-root", "--force-depends", "--log=/dev/null", "--unpack", deb)
    found = run("dpkg", f"--root={root}", "--listfiles", "python3-trackedcam").split()
    missing = sorted(file for file in PYTHON_FILES if f"/usr/{file}" not in found)
    assert not missing, f"{missing} are missing in {found}"
    assert not [file for file in found if not re.match(r"/\.|/usr(/lib(/python3(/|$)|$)|/share(/doc(/|$)|$)|$)", file)]


with tempfile.TemporaryDirectory() as name:
    scratch = pathlib.Path(name)
    # The helpers of dpkg are there; they are not in every user's path.
    os.environ["PATH"] += ":/usr/sbin:/sbin"
    run("cpack", "-G", "DEB;TGZ", "-B", scratch / "packages", cwd=BUILD)
    check_deb(next((scratch / "packages").glob("trackedcam_*.deb")), scratch / "root")
    python = list((scratch / "packages").glob("python3-trackedcam_*_all.deb"))
    if python:  # the build can be without it
        check_python_deb(python[0], scratch / "root")
    with tarfile.open(next((scratch / "packages").glob("*.tar.gz"))) as archive:
        archive.extractall(scratch)
    check_content(next(scratch.glob("trackedcam-*")))
print("the packages hold what they should")
