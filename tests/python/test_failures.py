"""Errors and warnings."""

import os
import pathlib
import signal
import subprocess
import sys
import warnings

import numpy as np
import pytest
import trackedcam
from conftest import CHART, SimulatedShoot


def test_a_failed_calibration_raises_with_report_and_advice(perfect, tmp_path):
    with pytest.raises(trackedcam.CalibrationError, match="12") as caught:
        trackedcam.calibrate(perfect.data, **{**CHART, "board": (5, 4)}, **perfect.mounting, log_folder=tmp_path)
    report = caught.value.report
    assert report.code == 4 and report.level == "failed"
    assert caught.value.advice == report.advice != ""
    assert report.cross_check is None
    for read in (lambda: report.lens, lambda: report.transform_cam_tc):
        with pytest.raises(trackedcam.CalibrationError):
            read()
    with pytest.raises(trackedcam.CalibrationError):
        report.export("ue4")
    assert "failed" in repr(report) and "Advice" in report._repr_html_()


def test_expecting_no_records_is_a_failure_of_the_library(perfect, tmp_path):
    with pytest.raises(trackedcam.CalibrationError) as caught:
        trackedcam.calibrate(perfect.data, **CHART, **perfect.mounting, log_folder=tmp_path,
                             expected_records=0)
    assert caught.value.report.code == 7


def test_a_wrong_mounting_warns(tmp_path):
    shoot = SimulatedShoot(tmp_path / "shoot", "--photographs", "24", "--mounting-error-mm", "30",
                           "--mounting-error-degrees", "2")
    with pytest.warns(trackedcam.CalibrationWarning, match="mounting"):
        report = trackedcam.calibrate(shoot.data, **CHART, **shoot.mounting, log_folder=tmp_path)
    assert report.level == "wrong"
    assert "mountingOff" in {finding.id for finding in report.findings}
    # It is not exported unless asked for, and then warns.
    for export in (lambda **options: report.export("unity", **options),
                   lambda **options: report.export_file("opencv", tmp_path / "camera.yml", **options)):
        with pytest.raises(trackedcam.CalibrationError):
            export()
        assert not (tmp_path / "camera.yml").exists()
        with pytest.warns(trackedcam.CalibrationWarning) as warned:
            export(even_if_wrong=True)
        assert warned[0].filename == __file__
    with pytest.raises(trackedcam.CalibrationError):
        report.lens_file("Prime 35")


def test_a_good_one_does_not_warn(perfect, tmp_path):
    with warnings.catch_warnings():
        warnings.simplefilter("error")
        trackedcam.calibrate(perfect.data, **CHART, **perfect.mounting, log_folder=tmp_path)


def test_invalid_values_raise(perfect, tmp_path):
    def calibrate(data=perfect.data, **changes):
        trackedcam.calibrate(data, **{**CHART, **perfect.mounting, "log_folder": tmp_path / "log", **changes})

    for changes, message in [
            ({"square_m": 30}, "30"),
            ({"good_enough": (0, 0.2)}, "good enough"),
            ({"board": (1, 6)}, "corners"),
            ({"board": (9, 6, 1)}, "3 numbers"),
            ({"board": (9.5, 6)}, "9.5, expected whole numbers"),
            ({"board": 9}, "board is 9, expected 2 numbers"),
            ({"at_m": (4, -1)}, "-1 m"),
            ({"sensor_mm": (0, 1)}, "sensor"),
            ({"chart_rotation_deg": None}, "rotation and translation"),
            ({"tracker_axes": "maya"}, "'maya'"),
            ({"tracker_unit": "inch"}, "'inch'"),
            ({"quaternion_order": "wzyx"}, "'wzyx'"),
            ({"mounting_axes": "world"}, "'world'"),
            ({"expected_records": -1}, "records|rows"),
            ({"data": tmp_path / "missing.csv"}, "missing.csv"),
            ({"data": "a\0b"}, "zero"),
            ({"data": trackedcam.Shoot()}, "photographs")]:
        with pytest.raises(trackedcam.InputError, match=message):
            calibrate(**changes)
    shoot = trackedcam.Shoot()
    with pytest.raises(trackedcam.InputError, match="comma"):
        shoot.add("a,b.jpg", (0, 0, 0), (1, 0, 0, 0), (0, 0, 0), (1, 0, 0, 0))
    with pytest.raises(trackedcam.InputError, match="2 numbers"):
        shoot.add("a.jpg", (0, 0), (1, 0, 0, 0), (0, 0, 0), (1, 0, 0, 0))
    with pytest.raises(trackedcam.InputError, match="chart's tracker.*NaN"):
        shoot.add("a.jpg", (0, 0, 0), (1, 0, 0, 0), (0, float("nan"), 0), (1, 0, 0, 0))
    with pytest.raises(trackedcam.InputError, match="quaternion of the camera's tracker is zero"):
        shoot.add("a.jpg", (0, 0, 0), (0, 0, 0, 0), (0, 0, 0), (1, 0, 0, 0))
    with pytest.raises(trackedcam.InputError, match="no photographs"):  # none was added
        shoot.save(tmp_path / "rows.csv")
    positions, quaternions = np.zeros((2, 3)), np.ones((2, 4))
    with pytest.raises(trackedcam.InputError, match=r"chart_positions has the shape \(3, 2\)"):
        trackedcam.Shoot.from_arrays(["a.jpg", "b.jpg"], positions, quaternions, positions.reshape(3, 2), quaternions)
    with pytest.raises(trackedcam.InputError, match="1 photographs, but 2, 2, 2, 2 rows"):
        trackedcam.Shoot.from_arrays(["a.jpg"], positions, quaternions, positions, quaternions)


def test_a_log_can_be_cross_checked(perfect, tmp_path):
    report = trackedcam.calibrate(perfect.data, **CHART, **perfect.mounting, log_folder=tmp_path)
    checked = trackedcam.crosscheck(report.log, **perfect.mounting)
    assert checked.level == "good" and checked.cross_check is not None
    with pytest.raises(trackedcam.InputError, match="log"):
        trackedcam.crosscheck(perfect.data)


@pytest.mark.skipif(os.name != "posix", reason="signals")
def test_ctrl_c_raises_at_once_and_the_run_ends_in_the_background(tmp_path):
    # Enough photographs that the run is not over before the signal.
    shoot = SimulatedShoot(tmp_path / "shoot", "--photographs", "60")
    log = tmp_path / "log"
    ended = "Average reprojection error"
    # It goes on: with Python, and with the library while the run uses it.
    script = ("import pathlib, sys, trackedcam\n"
              "try:\n"
              f"  trackedcam.calibrate({str(shoot.data)!r}, sensor_mm=(36, 20.25), board=(9, 6), square_m=0.03,\n"
              f"    log_folder={str(log)!r},\n"
              "    progress=lambda p: print('seen', file=sys.stderr, flush=True))\n"
              "except KeyboardInterrupt:\n"
              f"  logs = ''.join(log.read_text() for log in pathlib.Path({str(log)!r}).glob('run_*/log_*.txt'))\n"
              f"  print('after' if {ended!r} in logs else 'before', 'the end', file=sys.stderr, flush=True)\n"
              "  trackedcam.Shoot().add('a.png', (1, 2, 3), (1, 0, 0, 0), (1, 2, 3), (1, 0, 0, 0))\n"
              "  print('went on', file=sys.stderr, flush=True)\n")
    process = subprocess.Popen([sys.executable, "-c", script], stdout=subprocess.DEVNULL, stderr=subprocess.PIPE,
                               text=True)
    assert process.stderr.readline() == "seen\n"
    process.send_signal(signal.SIGINT)
    rest = process.stderr.read().replace("seen\n", "")
    assert rest == "before the end\nwent on\n"
    assert process.wait() == 0
    logs = list(pathlib.Path(log).glob("run_*/log_*.txt"))
    assert logs and "Camera and Tracker Calibration" in logs[0].read_text(encoding="utf-8")
    assert ended in logs[0].read_text(encoding="utf-8")
