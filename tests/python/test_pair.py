"""Pairings of a simulated recording."""

import subprocess

import pytest
import trackedcam

from conftest import PROGRAM

CHART = {"board": (9, 6), "square_m": 0.03}


@pytest.fixture(scope="module")
def film(tmp_path_factory):
    folder = tmp_path_factory.mktemp("recording") / "film"
    subprocess.run([PROGRAM, "simulate", folder, "--recording", "--image", "640x360", "--seconds", "30", "--fps",
                    "12.5", "--delay-ms", "-40"], check=True, stdout=subprocess.DEVNULL)
    return folder


def test_a_recording_becomes_a_shoot_that_calibrates(film, tmp_path):
    found = trackedcam.pair(film / "camera_poses.txt", film / "chart_poses.txt", film / "frames", tmp_path / "shoot",
                            times=film / "frames/times.csv", **CHART)
    assert abs(found.delay_s + 0.040) < 0.002
    assert 0 < found.delay_half_s < 0.002
    assert "earlier" in found.text[0] and found.text[0] in repr(found)
    report = trackedcam.calibrate(found.shoot, sensor_mm=(36, 20.25), log_folder=tmp_path / "log", **CHART)
    assert report.level == "good"


def test_what_cannot_be_paired_is_an_error(film, tmp_path):
    poses = film / "camera_poses.txt", film / "chart_poses.txt"
    with pytest.raises(trackedcam.InputError, match="swapped"):
        trackedcam.pair(*reversed(poses), film / "frames", tmp_path / "shoot", times=film / "frames/times.csv", **CHART)
    with pytest.raises(trackedcam.InputError, match="not empty"):
        trackedcam.pair(*poses, film / "frames", film, fps=12.5, **CHART)
    assert not (tmp_path / "shoot").exists()
