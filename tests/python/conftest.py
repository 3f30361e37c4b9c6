"""Simulated shoots, which the program makes once."""

import json
import os
import pathlib
import subprocess

import pytest

PROGRAM = os.environ["TRACKEDCAM_PROGRAM"]
# The true settings of every simulated shoot, except the mounting.
CHART = {"sensor_mm": (36, 20.25), "board": (9, 6), "square_m": 0.03}


class SimulatedShoot:
    """A shoot on disk with its true values."""

    def __init__(self, folder, *options):
        subprocess.run([PROGRAM, "simulate", folder, "--image", "640x360", *options], check=True,
                       stdout=subprocess.DEVNULL)
        self.folder = pathlib.Path(folder)
        self.data = self.folder / "tracker_data.csv"
        self.truth = json.loads((self.folder / "truth.json").read_text(encoding="utf-8"))
        self.mounting = {"chart_rotation_deg": self._stated("chart-rotation"),
                         "chart_translation_m": self._stated("chart-translation")}

    def _stated(self, key):
        for line in (self.folder / "shoot.toml").read_text(encoding="utf-8").splitlines():
            if line.startswith(key):
                return [float(number) for number in line.split('"')[1].split(",")]
        raise KeyError(key)


@pytest.fixture(scope="session")
def perfect(tmp_path_factory):
    return SimulatedShoot(tmp_path_factory.mktemp("perfect") / "shoot", "--photographs", "24")
