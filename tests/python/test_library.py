"""The declarations of the package against the header."""

import ctypes
import os
import pathlib
import re
import shutil
import subprocess

import pytest
import trackedcam
from trackedcam import _library

SOURCE = pathlib.Path(os.environ["TRACKEDCAM_SOURCE"])
HEADER = SOURCE / "include/trackedcam/trackedcam_c.h"


def test_structs_have_the_layout_of_the_header():
    lines = []
    for name, struct in [("pose", _library.Pose), ("settings", _library.Settings),
                         ("export_options", _library.ExportOptions),
                         ("verify_options", _library.VerifyOptions),
                         ("pair_options", _library.PairOptions),
                         ("progress", _library.ProgressStruct)]:
        lines.append(f"trackedcam_{name} {ctypes.sizeof(struct)}")
        lines += [f"trackedcam_{name}.{field[0]} {getattr(struct, field[0]).offset}" for field in struct._fields_]
    printed = subprocess.run([os.environ["TRACKEDCAM_PRINT_LAYOUT"]], check=True, capture_output=True, text=True)
    # Python takes the lens from the JSON text.
    assert lines == [line for line in printed.stdout.splitlines() if not line.startswith("trackedcam_lens")]


def test_functions_take_what_the_header_says():
    text = re.sub(r"\s+", " ", HEADER.read_text(encoding="utf-8"))
    declared = {name: arguments.count(",") + 1 for name, arguments in
                re.findall(r"TRACKEDCAM_C_API trackedcam_status (\w+)\(([^)]*)\)", text)}
    for name, arguments in _library.FUNCTIONS.items():
        assert declared[name] == len(arguments), name
    # Python uses a run, the JSON text and the export with options instead of these.
    assert set(declared) - set(_library.FUNCTIONS) == {
        "trackedcam_calibrate", "trackedcam_report_level", "trackedcam_report_code", "trackedcam_report_verdict",
        "trackedcam_report_lens", "trackedcam_report_transform_cam_tc",
        "trackedcam_report_text", "trackedcam_report_count", "trackedcam_report_export",
        "trackedcam_verification_answer"}


def test_statuses_are_those_of_the_header():
    declared = dict(re.findall(r"TRACKEDCAM_(\w+) = (\d)", HEADER.read_text(encoding="utf-8").split("enum ")[1]))
    assert {name: str(getattr(_library, name)) for name in declared} == declared


@pytest.mark.skipif(shutil.which("mypy") is None, reason="mypy is missing")
def test_the_readmes_snippet_has_types(tmp_path):
    readme = (SOURCE / "README.md").read_text(encoding="utf-8")
    snippet, = re.findall(r"```python\n(.*?)```", readme, re.DOTALL)
    (tmp_path / "host.py").write_text(snippet, encoding="utf-8")
    checked = subprocess.run(["mypy", "--strict", "--cache-dir", tmp_path / "cache", tmp_path / "host.py"],
                             env={**os.environ, "MYPYPATH": str(SOURCE / "python")}, capture_output=True, text=True)
    assert checked.returncode == 0, checked.stdout


def test_version():
    assert re.fullmatch(r"\d+\.\d+\.\d+", trackedcam.__version__)
