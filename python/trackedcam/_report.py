"""What a calibration came to."""

from __future__ import annotations

import ctypes
import dataclasses
import html
import json
import os
import pathlib
from typing import Any, Optional, Union

import numpy as np
import numpy.typing as npt

from . import _library
from ._library import call, encoded

Path = Union[str, "os.PathLike[str]"]
Array = npt.NDArray[np.float64]
LEVELS = ("good", "doubt", "wrong", "failed")


class CalibrationError(RuntimeError):
    """There is no result to use.

    Attributes:
        report: the Report, with what was found out all the same.
        advice: what to do, one sentence.
    """

    def __init__(self, report: "Report") -> None:
        super().__init__(f"{report.words} {report.advice}".strip())
        self.report = report
        self.advice = report.advice


class CalibrationWarning(UserWarning):
    """The result is there, and is in doubt or certainly wrong; the text says why."""


@dataclasses.dataclass(frozen=True)
class Lens:
    """The lens, as OpenCV takes it: the centre of the first pixel is (0, 0).

    Attributes:
        image_size: width and height of the photographs, pixels.
        camera_matrix: 3×3, pixels.
        distortion: k1, k2, p1, p2, k3; the last three are 0.
        field_of_view_deg: horizontal and vertical, degrees.
        focal_length_mm: by the smaller pixel pitch, millimetres.
    """

    image_size: tuple[int, int]
    camera_matrix: Array
    distortion: Array
    field_of_view_deg: tuple[float, float]
    focal_length_mm: float


@dataclasses.dataclass(frozen=True)
class CrossCheck:
    """A second answer from the same photographs, with its uncertainty.

    Attributes:
        transform_cam_tc: 4×4, translation in metres.
        transform_tr_chart: 4×4, translation in metres: the mounting of the chart's tracker.
        covariance_cam_tc: 6×6, of a left twist of transform_cam_tc: turn (radians), then shift (metres).
        covariance_tr_chart: 6×6, of a right twist of transform_tr_chart.
        t95: standard errors times this are the half-widths of 95 % intervals.
        standard_error_mm, standard_error_deg: of transform_cam_tc, along and about the axes of Cam.
        mounting: the rotation (degrees) and translation (metres) to calibrate with; None where the shoot
            cannot tell it.
        data: everything else, as in the result file.
    """

    transform_cam_tc: Array
    transform_tr_chart: Array
    covariance_cam_tc: Array
    covariance_tr_chart: Array
    t95: float
    standard_error_mm: Array
    standard_error_deg: Array
    mounting: Optional[tuple[Array, Array]]
    data: dict[str, Any]


@dataclasses.dataclass(frozen=True)
class Finding:
    """Something to know about a shoot or its result.

    Attributes:
        id: for programs: "mountingOff".
        severity: "error", "warning" or "note".
        text: one sentence.
        advice: what to do; empty where the text says it all.
        photographs: those that it names.
    """

    id: str
    severity: str
    text: str
    advice: str
    photographs: tuple[str, ...]


class Report:
    """All that is known of a calibration when it has ended.

    Figures are those of the library to the last bit. Safe to read on several threads.
    """

    def __init__(self, handle: _library.Handle) -> None:
        self._handle = handle
        self._data: dict[str, Any] = json.loads(self.json)

    @property
    def json(self) -> str:
        """The whole report as the program writes it into its result file."""
        text = ctypes.c_char_p()
        call("trackedcam_report_json", self._handle.pointer, ctypes.byref(text))
        return _decoded(text)

    @property
    def data(self) -> dict[str, Any]:
        """The same as Python objects, without exports that were made later."""
        return self._data

    @property
    def level(self) -> str:
        """What it came to: "good", "doubt", "wrong" or "failed"."""
        level = ctypes.c_int32()
        call("trackedcam_report_level", self._handle.pointer, ctypes.byref(level))
        return LEVELS[level.value]

    @property
    def code(self) -> Optional[int]:
        """The library's result code: 0, 99 usable, any other a failure; None where it was cut short."""
        code: Optional[int] = self._data["code"]
        return code

    @property
    def words(self) -> str:
        """What it came to, in a sentence."""
        return str(self._data["verdict"]["words"])

    @property
    def advice(self) -> str:
        """What to do; empty where there is nothing to do."""
        return str(self._data["verdict"]["advice"])

    def numbers(self, pointer: str, shape: Optional[tuple[int, ...]] = None) -> Optional[Array]:
        """The numbers at a place of the JSON text, such as "/normFocal".

        Args:
            pointer: a JSON pointer.
            shape: of the array; None for one dimension.

        Returns:
            An array of its own; None where there is no such place or none with numbers.
        """
        count = ctypes.c_size_t()
        arguments = self._handle.pointer, encoded(pointer)
        try:
            call("trackedcam_report_numbers", *arguments, None, 0, ctypes.byref(count))
        except _library.StatusError as error:
            if error.status == _library.NOT_THERE:
                return None
            if error.status != _library.TOO_SMALL:
                raise
        values = np.empty(count.value, dtype=np.float64)
        place = values.ctypes.data_as(ctypes.POINTER(ctypes.c_double))
        call("trackedcam_report_numbers", *arguments, place, values.size, ctypes.byref(count))
        if shape is not None and values.size != np.prod(shape):
            return None
        return values if shape is None else values.reshape(shape)

    @property
    def transform_cam_tc(self) -> Optional[Array]:
        """4×4, translation in metres: coordinates of the camera's tracker into those of its optical frame."""
        return self.numbers("/transformCamTc", (4, 4))

    @property
    def lens(self) -> Optional[Lens]:
        """The lens; None where the library found none."""
        lens = _library.LensStruct()
        try:
            call("trackedcam_report_lens", self._handle.pointer, ctypes.byref(lens), ctypes.sizeof(lens))
        except _library.StatusError as error:
            if error.status == _library.NOT_THERE:
                return None
            raise
        return Lens((int(lens.image_width_px), int(lens.image_height_px)),
                    np.array([[lens.fx_px, 0, lens.cx_px], [0, lens.fy_px, lens.cy_px], [0, 0, 1]]),
                    np.array([lens.k1, lens.k2, lens.p1, lens.p2, lens.k3]),
                    (lens.horizontal_fov_deg, lens.vertical_fov_deg), lens.focal_length_mm)

    @property
    def cross_check(self) -> Optional[CrossCheck]:
        """The second answer; None where the run ended before there was a lens, or where it has none."""
        data = self._data["crossCheck"]
        if data is None or not data["solved"]:
            return None

        def array(key: str, *shape: int) -> Array:
            numbers = self.numbers(f"/crossCheck/{key}", shape)
            return np.full(shape, np.nan) if numbers is None else numbers

        mounting = None if data["mounting"] is None else (
            array("mounting/rotationDegrees", 3), array("mounting/translationMetres", 3))
        return CrossCheck(array("transformCamTc", 4, 4), array("transformTrChart", 4, 4),
                          array("covarianceCamTcTwist", 6, 6), array("covarianceTrChartTwist", 6, 6),
                          float("nan") if data["t95"] is None else data["t95"],
                          array("standardErrorCamTc/shiftMm", 3), array("standardErrorCamTc/turnDegrees", 3),
                          mounting, data)

    @property
    def findings(self) -> list[Finding]:
        """What there is to know about shoot and result, the worst first."""
        return [Finding(f["id"], f["severity"], f["text"], f["advice"], tuple(f.get("photographs", ())))
                for f in self._data["findings"]]

    @property
    def used(self) -> list[str]:
        """The photographs that count in the result, as the data file names them."""
        return list(self._data["used"])

    @property
    def dropped(self) -> dict[str, str]:
        """The photographs that do not, and why."""
        return {d["photograph"]: d["reason"] for d in self._data["dropped"]}

    @property
    def log(self) -> Optional[pathlib.Path]:
        """The library's log; None where it could not write one. Its folder is that of the run."""
        return pathlib.Path(self._data["log"]) if self._data["log"] else None

    def export(self, engine: str, parent_axes: Optional[str] = None) -> dict[str, Any]:
        """Hands the result to an engine: where the camera is at its tracker, in the engine's axes.

        Args:
            engine: "unreal", "unity", "ue4", "ue5", "ue5-xn" or "aximmetry".
            parent_axes: for unreal and unity: X, Y, Z of the camera's parent in the tracker's reported axes,
                such as "z,-x,y".

        Returns:
            The figures by names that tell their units, and a code: 0, or 3 for a gimbal lock.

        Raises:
            InputError: for an engine or axes that there are not.
            CalibrationError: where the calibration failed.
        """
        axes = None if parent_axes is None else encoded(parent_axes)
        exported: dict[str, Any] = json.loads(self._handed("trackedcam_report_export", encoded(engine), axes))
        return exported

    def lens_file(self, name: str, parent_axes: Optional[str] = None) -> str:
        """The content of a .ulens file for Unreal's editor. Raises as export does."""
        axes = None if parent_axes is None else encoded(parent_axes)
        return self._handed("trackedcam_report_lens_file", axes, encoded(name))

    def _handed(self, function: str, *arguments: Any) -> str:
        text = ctypes.c_char_p()
        try:
            call(function, self._handle.pointer, *arguments, ctypes.byref(text))
        except _library.StatusError as error:
            if error.status == _library.NOT_THERE and self.level == "failed":
                raise CalibrationError(self) from error
            raise
        return _decoded(text)

    def page(self, folder: Optional[Path] = None) -> str:
        """The report page, HTML that a browser shows without anything beside it.

        Args:
            folder: where it will lie, for its links to log and images; None: in the folder of the run.
        """
        text = ctypes.c_char_p()
        place = None if folder is None else encoded(folder)
        call("trackedcam_report_page", self._handle.pointer, place, ctypes.byref(text))
        return _decoded(text)

    def save(self, json_file: Optional[Path] = None, page_file: Optional[Path] = None) -> None:
        """Writes the result file and the report page, each where a path is given."""
        call("trackedcam_report_save", self._handle.pointer, None if json_file is None else encoded(json_file),
             None if page_file is None else encoded(page_file))

    def __repr__(self) -> str:
        lens = self.lens
        what = "" if lens is None else f", {lens.focal_length_mm:.2f} mm"
        return f"<trackedcam.Report {self.level}, code {self.code}, {len(self.used)} photographs{what}>"

    def _repr_html_(self) -> str:
        rows = [("Verdict", html.escape(f"{self.level}: {self.words}"))]
        if self.advice:
            rows.append(("Advice", html.escape(self.advice)))
        lens, transform = self.lens, self.transform_cam_tc
        if lens is not None:
            k = lens.camera_matrix
            rows.append(("Lens", f"{lens.focal_length_mm:.3f} mm; fx {k[0, 0]:.2f}, fy {k[1, 1]:.2f}, "
                                 f"cx {k[0, 2]:.2f}, cy {k[1, 2]:.2f} pixels; "
                                 f"k1 {lens.distortion[0]:.5f}, k2 {lens.distortion[1]:.5f}"))
        if transform is not None:
            lines = "\n".join(" ".join(f"{number:10.6f}" for number in row) for row in transform)
            rows.append(("Transform_Cam_Tc (metres)", f"<pre>{lines}</pre>"))
        body = "".join(f"<tr><th>{name}</th><td>{value}</td></tr>" for name, value in rows)
        return f"<table>{body}</table>"


def _decoded(text: ctypes.c_char_p) -> str:
    return (text.value or b"").decode()
