"""Reports that are loaded, drawn, and shown in a notebook."""

import copy
import json
import os
import sys

import matplotlib
import numpy as np
import pytest
import trackedcam
from conftest import CHART

matplotlib.use("Agg")
from matplotlib import pyplot  # noqa: E402  pylint: disable=wrong-import-position

# Where someone wants to look at the drawings.
PICTURES = os.environ.get("TRACKEDCAM_PICTURES")


@pytest.fixture(name="report", scope="module")
def fixture_report(perfect, tmp_path_factory):
    return trackedcam.calibrate(perfect.data, **CHART, **perfect.mounting, log_folder=tmp_path_factory.mktemp("log"),
                                exclude=["img_003"])


@pytest.fixture(name="loaded")
def fixture_loaded(report, tmp_path):
    report.save(tmp_path / "result_ü.json")
    return trackedcam.Report.load(tmp_path / "result_ü.json")


@pytest.fixture(autouse=True)
def close_figures(request):
    yield
    for number in pyplot.get_fignums():
        if PICTURES:
            pyplot.figure(number).savefig(f"{PICTURES}/{request.node.name}_{number}.png")
        pyplot.close(number)


def test_a_loaded_report_has_the_values_of_the_saved_one(report, loaded):
    assert loaded.data == report.data and loaded.json == report.json
    assert (loaded.level, loaded.code, loaded.message, loaded.advice) == ("good", 0, report.message, report.advice)
    assert (loaded.transform_cam_tc == report.transform_cam_tc).all()
    assert (loaded.lens.camera_matrix == report.lens.camera_matrix).all()
    assert (loaded.lens.distortion == report.lens.distortion).all()
    assert loaded.lens.image_size == (640, 360)
    assert loaded.lens.focal_length_mm == report.data["focalLengthMm"][0]
    assert loaded.photographs == report.photographs and loaded.findings == report.findings
    assert (loaded.cross_check.covariance_cam_tc == report.cross_check.covariance_cam_tc).all()
    assert repr(loaded) == repr(report) and loaded._repr_html_() == report._repr_html_()
    assert copy.deepcopy(loaded).data == report.data


@pytest.mark.parametrize("pointer", [
    "/normFocal", "/normFocal/1", "/normFocal/2", "/code", "/crossCheck/covarianceCamTcTwist", "/message", "/nothing",
    "/mountingIsStated", "/limits", "/limits/lensErrorPixels/doubt", "/photographs/0/crossCheck/corners",
    "/exports", "/inputs/atMetres", "/normFocal/x", ""])
def test_a_loaded_report_finds_the_same_numbers(report, loaded, pointer):
    expected, found = report.numbers(pointer), loaded.numbers(pointer)
    assert (expected is None) == (found is None)
    assert expected is None or np.array_equal(expected, found, equal_nan=True)


def test_a_loaded_report_does_not_count_from_the_end(loaded):
    assert loaded.numbers("/normFocal/-1") is None


def test_a_loaded_report_says_what_it_cannot_do(loaded, tmp_path):
    for call in [lambda: loaded.export("ue5"), lambda: loaded.export_file("opencv", tmp_path / "a.yml"),
                 lambda: loaded.lens_file("a"), loaded.page, lambda: loaded.save(tmp_path / "b.json")]:
        with pytest.raises(RuntimeError, match="trackedcam export"):
            call()


@pytest.mark.parametrize("text", ["", "no JSON", "[]", "{}", "7", '{"code": 0, "versions": {}}', "[" * 100000,
                                  b"\xff".decode("latin-1")])
def test_other_files_are_refused(tmp_path, text):
    (tmp_path / "other.json").write_text(text, encoding="latin-1")
    with pytest.raises(trackedcam.InputError, match="other.json is not a result file"):
        trackedcam.Report.load(tmp_path / "other.json")


def test_a_file_that_is_not_there_is_an_error_of_the_system(tmp_path):
    with pytest.raises(FileNotFoundError):
        trackedcam.Report.load(tmp_path / "nothing.json")


def test_draws_the_error_of_each_photograph(loaded):
    ax = loaded.plot_photographs()
    drawn = {round(bar.get_x() + bar.get_width() / 2): (bar.get_height(), bars.get_label())
             for bars in ax.containers for bar in bars}
    assert drawn == {place: (photograph["libraryErrorPixels"],
                             "used" if photograph["state"] == "used" else "left out")
                     for place, photograph in enumerate(loaded.data["photographs"])
                     if photograph["libraryErrorPixels"] is not None}
    assert len(drawn) == 23 and 3 not in drawn
    assert [label.get_text() for label in ax.get_xticklabels()] == [f"img_{number:03}.jpg" for number in range(24)]


def test_draws_the_views(loaded):
    ax = loaded.plot_views()
    points, suggested = ax.collections
    views = [p["crossCheck"] for p in loaded.data["photographs"] if p["crossCheck"] is not None]
    x, y = points.get_offsets().T
    assert np.asarray(np.hypot(x, y)) == pytest.approx([view["tiltDegrees"] for view in views])
    assert np.asarray(np.degrees(np.arctan2(y, x))) == pytest.approx([view["tiltDirectionDegrees"] for view in views])
    assert points.get_array().tolist() == [view["distanceMetres"] for view in views]
    assert len(suggested.get_offsets()) == len(loaded.data["crossCheck"]["suggestedViews"]) > 0
    assert ax.yaxis_inverted()


def test_draws_the_uncertainty(loaded):
    ax = loaded.plot_uncertainty()
    millimetres, degrees = ax.figure.axes
    check = loaded.data["crossCheck"]
    for axes, key in [(millimetres, "translationMm"), (degrees, "rotationDegrees")]:
        assert [bar.get_height() for bar in axes.patches] == pytest.approx(
            [check["t95"] * error for error in check["standardErrorCamTc"][key]])


def test_draws_the_corners(loaded):
    ax = loaded.plot_corners()
    arrows, = ax.collections
    views = [p["crossCheck"] for p in loaded.data["photographs"] if p["crossCheck"] is not None]
    found = np.concatenate([view["corners"] for view in views])
    predicted = np.concatenate([view["predicted"] for view in views])
    assert found.shape == (23 * 54, 2)
    assert (arrows.XY == found).all()
    assert (np.stack([arrows.U, arrows.V], axis=1) == predicted - found).all()
    assert np.asarray(arrows.get_array()) == pytest.approx(np.linalg.norm(predicted - found, axis=1))
    assert ax.get_xlim() == (-0.5, 639.5) and ax.get_ylim() == (359.5, -0.5)


@pytest.mark.parametrize("name", ["plot_photographs", "plot_views", "plot_uncertainty", "plot_corners"])
def test_draws_into_the_axes_of_the_caller(loaded, name):
    figure, (left, right) = pyplot.subplots(1, 2)
    assert getattr(loaded, name)(ax=right) is right
    assert right.has_data() and not left.has_data() and pyplot.get_fignums() == [figure.number]


def test_without_matplotlib_drawings_say_what_to_install(loaded, monkeypatch):
    monkeypatch.setitem(sys.modules, "matplotlib.pyplot", None)
    with pytest.raises(ImportError, match="install python3-matplotlib"):
        loaded.plot_photographs()


def test_without_a_cross_check_there_is_nothing_to_draw_of_it(loaded, tmp_path):
    data = {**loaded.data, "crossCheck": None,
            "photographs": [{**photograph, "crossCheck": None} for photograph in loaded.data["photographs"]]}
    (tmp_path / "failed.json").write_text(json.dumps(data), encoding="utf-8")
    report = trackedcam.Report.load(tmp_path / "failed.json")
    assert report.cross_check is None and "Known to" not in report._repr_html_()
    for draw in [report.plot_views, report.plot_uncertainty, report.plot_corners]:
        with pytest.raises(trackedcam.CalibrationError):
            draw()
    report.plot_photographs()


def test_a_notebook_shows_verdict_lens_and_uncertainty_as_text(loaded, tmp_path):
    shown = loaded._repr_html_()
    check = loaded.cross_check
    for text in [loaded.message, loaded.data["photographCounts"]["text"], f"fx {loaded.lens.camera_matrix[0, 0]:.2f}",
                 f"{check.t95 * check.standard_error_mm[0]:.2f}"]:
        assert text in shown
    data = copy.deepcopy(loaded.data)
    data["verdict"]["message"] = "<script>alert(1)</script>"
    data["photographCounts"]["text"] = "a & b"
    (tmp_path / "edited.json").write_text(json.dumps(data), encoding="utf-8")
    shown = trackedcam.Report.load(tmp_path / "edited.json")._repr_html_()
    assert "<script>" not in shown and "&lt;script&gt;" in shown and "a &amp; b" in shown


def test_a_notebook_shows_a_verification(loaded, perfect, tmp_path):
    result = tmp_path / "result.json"
    result.write_text(loaded.json, encoding="utf-8")
    verification = trackedcam.verify(result, perfect.data)
    shown = verification._repr_html_()
    assert verification.message in shown and verification.advice in shown
    verification.message = "<b>"
    assert "&lt;b&gt;" in verification._repr_html_()
