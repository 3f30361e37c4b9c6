"""A perfect shoot gives its true values, and the same values as the program."""

import copy
import inspect
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import threading

import numpy as np
import pytest
import trackedcam
from conftest import CHART, PROGRAM


@pytest.fixture(scope="module")
def report(perfect, tmp_path_factory):
    log = tmp_path_factory.mktemp("log")
    return trackedcam.calibrate(perfect.data, **CHART, **perfect.mounting, log_folder=log)


def test_lens_and_transform_are_those_of_the_truth(report, perfect):
    truth = np.array(perfect.truth["transformCamTc"], dtype=float).reshape(4, 4)
    assert report.level == "good" and report.code == 0
    assert np.linalg.norm(report.transform_cam_tc[:3, 3] - truth[:3, 3]) < 0.001
    assert np.abs(report.transform_cam_tc[:3, :3] - truth[:3, :3]).max() < 0.001
    assert report.lens.image_size == (640, 360)
    assert report.lens.camera_matrix.shape == (3, 3)
    assert report.lens.camera_matrix[2].tolist() == [0, 0, 1]
    assert report.lens.camera_matrix[0, 0] == pytest.approx(0.9 * 640, rel=0.01)
    assert report.lens.distortion.shape == (5,)
    assert report.lens.distortion[0] == pytest.approx(-0.12, abs=0.01)
    assert report.lens.distortion[2:].tolist() == [0, 0, 0]


def test_the_cross_check_knows_how_well(report, perfect):
    check = report.cross_check
    truth = np.array(perfect.truth["transformCamTc"], dtype=float).reshape(4, 4)
    off_mm = 1000 * np.abs(check.transform_cam_tc[:3, 3] - truth[:3, 3])
    # The corners of rendered photographs have errors too, and not only random ones.
    assert (off_mm < 1).all()
    assert check.covariance_cam_tc.shape == (6, 6)
    assert (np.linalg.eigvalsh(check.covariance_cam_tc) > 0).all()
    rotation, translation = check.mounting
    assert rotation == pytest.approx(perfect.mounting["chart_rotation_deg"], abs=0.1)
    assert translation == pytest.approx(perfect.mounting["chart_translation_m"], abs=0.001)


def without_time(text):
    return re.sub(r'log_[-.0-9]+\.txt|"time": "[^"]*"|"seconds": \{[^}]*\}', "", text)


def test_the_result_is_the_programs(perfect, tmp_path, monkeypatch):
    result, log = tmp_path / "result.json", tmp_path / "log"
    subprocess.run([PROGRAM, "calibrate", "--config", perfect.folder / "shoot.toml", "--log-folder", log,
                    "--result", result, "--export", "ue5", "--no-report"], check=True, stdout=subprocess.DEVNULL)
    shutil.rmtree(log)
    monkeypatch.chdir(perfect.folder)
    report = trackedcam.calibrate(perfect.data, **CHART, **perfect.mounting, log_folder=log)
    exported = report.export("ue5")
    assert exported["code"] == 0 and len(exported["quaternionXyzw"]) == 4
    assert without_time(report.json) == without_time(result.read_text(encoding="utf-8"))
    report.save(tmp_path / "again.json", tmp_path / "page.html")
    assert (tmp_path / "again.json").read_text(encoding="utf-8") == report.json
    assert (tmp_path / "page.html").read_text(encoding="utf-8") == report.page(tmp_path)


def test_numbers_are_those_of_the_text(report):
    assert report.numbers("/transformCamTc").tolist() == report.data["transformCamTc"]
    assert report.numbers("/crossCheck/covarianceCamTcTwist", (6, 6)).tolist() == (
        report.data["crossCheck"]["covarianceCamTcTwist"])
    assert report.numbers("/nothing") is None
    assert report.data == json.loads(report.json)


def test_lists_the_photographs_in_the_order_of_the_rows(report, perfect):
    names = [line.split(",")[1] for line in perfect.data.read_text(encoding="utf-8").splitlines()[1:]]
    assert [photograph.name for photograph in report.photographs] == names
    assert [photograph.row for photograph in report.photographs] == list(range(2, len(names) + 2))
    for photograph in report.photographs:
        assert photograph.path.is_file() and photograph.path.is_absolute()
        assert photograph.state in ("used", "leftOutByFilter")
        if photograph.state == "used":
            assert photograph.reprojected_image.is_file()
            assert 0 < photograph.library_error_pixels < 1


def test_takes_a_shoot_that_was_continued(report, perfect, tmp_path):
    header, *rows = perfect.data.read_text(encoding="utf-8").splitlines()
    parts = [tmp_path / "first.csv", tmp_path / "second.csv"]
    for part, own in zip(parts, [rows[:10], rows[10:]]):
        part.write_text("\n".join([header, *own]), encoding="utf-8")
    settings = {**CHART, **perfect.mounting, "log_folder": tmp_path, "working_folder": perfect.folder}
    continued = trackedcam.calibrate(parts, **settings)
    assert (continued.transform_cam_tc == report.transform_cam_tc).all()
    with pytest.raises(trackedcam.InputError, match="both have"):
        trackedcam.calibrate([*parts, parts[0]], **settings)


def test_leaves_out_photographs(perfect, tmp_path):
    report = trackedcam.calibrate(perfect.data, **CHART, **perfect.mounting, log_folder=tmp_path,
                                  exclude=["img_003", pathlib.Path("photos/img_007.jpg")])
    left_out = [photograph.name for photograph in report.photographs if photograph.state == "leftOutByUser"]
    assert left_out == ["photos/img_003.jpg", "photos/img_007.jpg"]
    checked = trackedcam.crosscheck(report.log, exclude="img_004")
    assert sum(photograph.state == "leftOutByUser" for photograph in checked.photographs) == 1
    with pytest.raises(trackedcam.InputError, match="img_999"):
        trackedcam.start(perfect.data, **CHART, log_folder=tmp_path, exclude=["img_999"]).report()


def test_shows_itself(report):
    assert re.fullmatch(r"<trackedcam.Report good, code 0, \d+ photographs used, 32\.\d\d mm>", repr(report))
    shown = report._repr_html_()
    assert report.message in shown and "Transform_Cam_Tc" in shown and "fx" in shown


def test_exports_to_engines(report):
    assert len(report.export("unreal", parent_axes="minus-z-forward")["locationCm"]) == 3
    assert json.loads(report.lens_file("Prime 35"))
    with pytest.raises(trackedcam.InputError, match="word"):
        report.export("word")


def test_exports_to_files(report, tmp_path):
    for name in ("opencv", "ros", "colmap", "opentrackio"):
        text = report.export(name)["text"]
        report.export_file(name, tmp_path / "lens")
        assert (tmp_path / "lens").read_text(encoding="utf-8") == text and "Verdict good" in text
    assert report.export("stmap", overscan=1.25)["undistortedSize"] == [800, 450]
    report.export_file("stmap", tmp_path / "lens.exr", preview=tmp_path / "preview.png")
    assert {file.name for file in tmp_path.iterdir()} >= {"lens_undistort.exr", "lens_distort.exr", "preview.png"}
    tables = []
    for nodal_offset in (False, True):
        report.export_file("unreal", tmp_path / "lens.ulens", nodal_offset=nodal_offset)
        tables.append(len(json.loads((tmp_path / "lens.ulens").read_text(encoding="utf-8"))["cameraParameterTables"]))
    assert tables == [3, 4]
    for name, options in [("opencv", {"overscan": 1.1}), ("stmap", {"overscan": 0}), ("stmap", {"overscan": 9}),
                          ("ros", {"parent_axes": "x,y,z"})]:
        with pytest.raises(trackedcam.InputError):
            report.export(name, **options)


def test_the_readmes_snippet_runs(perfect, tmp_path, monkeypatch, capsys):
    readme = (pathlib.Path(os.environ["TRACKEDCAM_SOURCE"]) / "README.md").read_text(encoding="utf-8")
    snippet, = re.findall(r"```python\n(.*?)```", readme, re.DOTALL)
    (tmp_path / "shoot").symlink_to(perfect.folder)
    monkeypatch.chdir(tmp_path)
    exec(snippet, {})  # pylint: disable=exec-used
    assert len(capsys.readouterr().out.splitlines()) == 4 + 3


def test_rows_from_memory(report, perfect, tmp_path):
    shoot = trackedcam.Shoot()
    for line in perfect.data.read_text(encoding="utf-8").splitlines()[1:]:
        time, photograph, *numbers = line.split(",")
        n = [float(number) for number in numbers]
        shoot.add(photograph, n[0:3], n[3:7], n[7:10], n[10:14], time_s=float(time))
    again = trackedcam.calibrate(shoot, **CHART, **perfect.mounting, log_folder=tmp_path,
                                 working_folder=perfect.folder)
    assert (again.transform_cam_tc == report.transform_cam_tc).all()
    assert (tmp_path / "shoot_001/tracker_data.csv").is_file()


def test_arrays_make_the_rows_of_the_data_file(perfect, tmp_path):
    lines = [line.split(",") for line in perfect.data.read_text(encoding="utf-8").splitlines()[1:]]
    photographs = [line[1] for line in lines]
    poses = np.array([line[2:] for line in lines], dtype=float)
    times = np.array([line[0] for line in lines], dtype=float)
    shoot = trackedcam.Shoot.from_arrays(photographs, poses[:, 0:3], poses[:, 3:7], poses[:, 7:10], poses[:, 10:14],
                                         times)
    shoot.save(tmp_path / "rows.csv")
    saved = [line.split(",") for line in (tmp_path / "rows.csv").read_text(encoding="utf-8").splitlines()[1:]]
    assert [line[1] for line in saved] == photographs
    assert (np.array([line[2:16] for line in saved], dtype=float) == poses).all()
    assert (np.array([line[0] for line in saved], dtype=float) == times).all()


def test_takes_arrays_and_distances(perfect, tmp_path):
    report = trackedcam.calibrate(perfect.data, sensor_mm=np.array([36, 20.25]), board=np.array([9, 6]),
                                  square_m=np.float64(0.03), log_folder=tmp_path, at_m=np.array([8, 3]),
                                  **{name: np.array(value) for name, value in perfect.mounting.items()})
    assert [at["distanceMetres"] for at in report.data["crossCheck"]["onScreen"]] == [3, 8]
    checked = trackedcam.crosscheck(report.log, at_m=(5,))
    assert [at["distanceMetres"] for at in checked.data["crossCheck"]["onScreen"]] == [5]


def test_arguments_are_named_with_their_units():
    arguments = inspect.signature(trackedcam.calibrate).parameters
    assert [name for name, argument in arguments.items() if argument.default is argument.empty] == [
        "data", "sensor_mm", "board", "square_m", "log_folder"]
    assert set(arguments) - {"progress"} == set(inspect.signature(trackedcam.start).parameters)
    for name in arguments:
        assert f"        {name}" in trackedcam.calibrate.__doc__, name


def test_a_copy_outlives_its_report(report):
    copied = copy.deepcopy(report)
    assert copied.data == report.data and copied.data is not report.data
    assert (copied.lens.camera_matrix == report.lens.camera_matrix).all()
    assert copied.json == report.json


def test_reports_progress_on_the_callers_thread(perfect, tmp_path):
    seen = []

    def listen(progress):
        seen.append((threading.get_ident(), progress))

    trackedcam.calibrate(perfect.data, **CHART, **perfect.mounting, log_folder=tmp_path,
                         progress=listen)
    assert {thread for thread, _ in seen} == {threading.get_ident()}
    # A short stage may pass between two polls.
    assert {progress.stage for _, progress in seen} & {"Finding the board", "Solving the lens", "Writing the images"}
    assert all(0 <= progress.photographs_done <= progress.photographs_in_all for _, progress in seen)


def test_shows_a_progress_bar_if_there_is_one(perfect, tmp_path):
    trackedcam.calibrate(perfect.data, **CHART, **perfect.mounting, log_folder=tmp_path, progress=True)


def test_two_threads_at_once(report, perfect, tmp_path):
    found = {}

    def work(name):
        found[name] = trackedcam.calibrate(perfect.data, **CHART, **perfect.mounting, log_folder=tmp_path / name).transform_cam_tc

    threads = [threading.Thread(target=work, args=(name,)) for name in "ab"]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    for transform in found.values():
        assert (transform == report.transform_cam_tc).all()
    assert set(found) == set("ab")


def test_runs_in_the_background(perfect, tmp_path):
    run = trackedcam.start(perfect.data, **CHART, **perfect.mounting, log_folder=tmp_path)
    assert not run.wait(0)
    assert not run.is_done
    assert run.wait()
    assert run.report().level == "good"


def test_standard_output_is_the_hosts(perfect, tmp_path):
    script = ("import trackedcam\n"
              f"run = trackedcam.start({str(perfect.data)!r}, sensor_mm=(36, 20.25), board=(9, 6), square_m=0.03,\n"
              f"  log_folder={str(tmp_path)!r})\n"
              "print('during', flush=True)\n"
              "run.wait()\n"
              "print('after')\n")
    done = subprocess.run([sys.executable, "-c", script], check=True, capture_output=True, text=True)
    assert done.stdout == "during\nafter\n"


def test_the_photographs_of_the_shoot_fit_its_result(report, perfect, tmp_path):
    result, data = tmp_path / "result.json", tmp_path / "later.csv"
    report.save(json_file=result)
    rows = perfect.data.read_text(encoding="utf-8").splitlines(keepends=True)
    data.write_text("".join(rows[:6]), encoding="utf-8")
    found = trackedcam.verify(result, data, working_folder=perfect.folder)
    assert found.holds and found.answer == "holds"
    assert len(found.data["photographs"]) == 5
    assert found.data["old"] == found.data["new"]
    with pytest.raises(trackedcam.InputError, match="7 x 5.*9 x 6"):
        trackedcam.verify(result, data, board=(7, 5))


def test_a_result_does_not_differ_from_itself(report, perfect, tmp_path):
    result = tmp_path / "result.json"
    report.save(json_file=result)
    compared = trackedcam.compare(result, result)
    assert compared.data["transform"]["offMm"] == 0 and compared.conclusion == compared.data["conclusion"]
    assert compared.data["sharedPhotographs"] > 12
    with pytest.raises(trackedcam.InputError, match="tracker_data.csv"):
        trackedcam.compare(result, perfect.data)
