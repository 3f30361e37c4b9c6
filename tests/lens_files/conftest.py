"""A result with every kind of distortion, and the projection that its files must give."""

import json
import os
import pathlib
import subprocess

import numpy as np
import pytest

PROGRAM = os.environ["TRACKEDCAM_PROGRAM"]
SOURCE = pathlib.Path(os.environ["TRACKEDCAM_SOURCE"])

# The library sets p1, p2 and k3 to 0. Here none is, and no pixel is square, so that nothing can be exchanged unseen.
RESULT = {
    "code": 0,
    "time": "2026-11-22 14:05:09",
    "verdict": {"level": "good", "message": "Success: the calibration is good, from 20 of 20 photographs."},
    "imageSize": [1920, 1080],
    "normFocal": [0.9, 1.61],
    "normCenter": [0.512, 0.473],
    "distortion": [-0.12, 0.03, 0.0011, -0.0007, 0.004],
    "transformCamTc": json.loads((SOURCE / "docs/engines/example.json").read_text())["transformCamTc"],
    "inputs": {"sensorMm": [36, 20.25]},
    "crossCheck": {"lens": {"fx": 0.31, "fy": 0.3, "cx": 0.42, "cy": 0.4, "k1": 0.0002, "k2": 0.001},
                   "standardErrorCamTc": {"translationMm": [0.4, 0.5, 0.6], "rotationDegrees": [0.01, 0.02, 0.03]}},
}
WIDTH, HEIGHT = RESULT["imageSize"]
FX, FY = RESULT["normFocal"][0] * WIDTH, RESULT["normFocal"][1] * HEIGHT
CX, CY = RESULT["normCenter"][0] * WIDTH, RESULT["normCenter"][1] * HEIGHT
ORIGIN = ["Written by trackedcam ", "Calibrated 2026-11-22 14:05:09", "Verdict good: Success",
          "fx, fy, cx, cy 0.310, 0.300, 0.420, 0.400 px", "x, y, z 0.400, 0.500, 0.600 mm"]


def points():
    """Points at depth 1 that a photograph shows, from corner to corner: n×2."""
    x, y = np.meshgrid(np.linspace(-0.55, 0.53, 23), np.linspace(-0.3, 0.32, 15))
    return np.stack([x.ravel(), y.ravel()], axis=-1)


def distorted(at, k1, k2, p1, p2, k3):
    x, y = at.T
    r2 = x * x + y * y
    radial = 1 + k1 * r2 + k2 * r2**2 + k3 * r2**3
    return np.stack([radial * x + 2 * p1 * x * y + p2 * (r2 + 2 * x * x),
                     radial * y + p1 * (r2 + 2 * y * y) + 2 * p2 * x * y], axis=-1)


def library_pixels(at, scale=1):
    """Where the library's lens shows points, from the centre of the first pixel of a picture of another size."""
    return (distorted(at, *RESULT["distortion"]) * [FX, FY] + [CX, CY]) * scale


@pytest.fixture(name="export")
def fixture_export(tmp_path):
    """A function that exports RESULT, changed as its keyword arguments say, and returns the run."""

    def export(*arguments, **changes):
        (tmp_path / "result.json").write_text(json.dumps({**RESULT, **changes}))
        return subprocess.run([PROGRAM, "export", *arguments, "--result", "result.json"], cwd=tmp_path,
                              capture_output=True, encoding="utf-8", check=False)

    return export


@pytest.fixture(name="exported")
def fixture_exported(export, tmp_path):
    """A function that exports RESULT to a file and returns its path."""

    def exported(name, file, *arguments, **changes):
        run = export(name, "--out", file, *arguments, **changes)
        assert run.returncode == 0, run.stderr
        return tmp_path / file

    return exported
