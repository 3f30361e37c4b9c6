"""The report of a calibration."""

from __future__ import annotations

import ctypes
import dataclasses
import html
import json
import os
import pathlib
import warnings
from typing import Any, Optional, TypeVar, Union

import numpy as np
import numpy.typing as npt

from . import _library, _plot
from ._library import InputError, call, encoded

Path = Union[str, "os.PathLike[str]"]
Array = npt.NDArray[np.float64]
Value = TypeVar("Value")
# What every result file has.
_KEYS = {"code", "verdict", "findings", "photographs", "transformCamTc", "crossCheck", "log", "versions"}


class CalibrationError(RuntimeError):
    """There is no usable result, or an export refuses one that is certainly wrong.

    Attributes:
        report: the Report, with everything that is known.
        advice: what to do next, one sentence.
    """

    def __init__(self, report: "Report") -> None:
        super().__init__(f"{report.message} {report.advice}".strip())
        self.report = report
        self.advice = report.advice


class CalibrationWarning(UserWarning):
    """The result is in doubt or certainly wrong; the text says why."""


@dataclasses.dataclass(frozen=True)
class Lens:
    """The lens, as OpenCV takes it: the centre of the first pixel is (0, 0).

    Attributes:
        image_size: width and height of the photographs, pixels.
        camera_matrix: 3×3, pixels.
        distortion: k1, k2, p1, p2, k3; the last three are always 0.
        field_of_view_deg: horizontal and vertical, degrees.
        focal_length_mm: from the smaller pixel pitch, millimetres.
    """

    image_size: tuple[int, int]
    camera_matrix: Array
    distortion: Array
    field_of_view_deg: tuple[float, float]
    focal_length_mm: float


@dataclasses.dataclass(frozen=True)
class CrossCheck:
    """A second solution from the same photographs, with its uncertainty.

    Attributes:
        transform_cam_tc: 4×4, translation in metres.
        transform_tr_chart: 4×4, translation in metres: the mounting of the chart's tracker.
        covariance_cam_tc: 6×6, of a left twist of transform_cam_tc: rotation (radians), then translation (metres).
        covariance_tr_chart: 6×6, of a right twist of transform_tr_chart.
        t95: a standard error times this is the half-width of a 95 % interval.
        standard_error_mm, standard_error_deg: of transform_cam_tc, along and about the axes of Cam.
        mounting: rotation (degrees) and translation (metres) to calibrate with; None if the photographs do not
            determine it.
        data: all keys of crossCheck in the result file.
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
    """A fact about a shoot or its result.

    Attributes:
        id: a name for programs, such as "mountingOff".
        severity: "error", "warning" or "note".
        text: the fact, one sentence.
        advice: what to do; empty if there is nothing to do.
        photographs: names of the photographs that it concerns.
    """

    id: str
    severity: str
    text: str
    advice: str
    photographs: tuple[str, ...]


@dataclasses.dataclass(frozen=True)
class Photograph:
    """A row of the data file.

    Attributes:
        row: its line in the data file, from 1; None in a report from a log.
        name: as in the data file.
        path: absolute; None if it is not known.
        state: "used", "leftOutByFilter", "leftOutByCrossCheck", "boardNotFound", "notLoaded",
            "leftOutByUser", "leftOutBeforeTheRun", "notReached", "notUsed" or, if the log is incomplete, "unknown".
        reason: why it is not used or does not agree with the others; None if there is no reason.
        library_error_pixels: the library's reprojection error; None if it has none.
        reprojected_image: the library's image with the corners drawn in; None if there is none.
    """

    row: Optional[int]
    name: str
    path: Optional[pathlib.Path]
    state: str
    reason: Optional[str]
    library_error_pixels: Optional[float]
    reprojected_image: Optional[pathlib.Path]


class Report:
    """Everything that is known about a calibration that has ended.

    Values equal those of the library to the last bit. Several threads may read a report.
    """

    def __init__(self, source: Union[_library.Handle, str]) -> None:
        # The handle of a calibration of this process, or the JSON text of an earlier one.
        self._source = source
        self._data: dict[str, Any] = json.loads(self.json)

    @classmethod
    def load(cls, path: Path) -> "Report":
        """Loads a result file: of the program, or of save. It has all values and drawings. It cannot be exported or
        saved and has no page; for those use the commands `trackedcam export` and `trackedcam report`.

        Args:
            path: the result file.

        Raises:
            InputError: it is not a result file, or of an older form.
            OSError: it cannot be read.
        """
        wrong = f"{os.fspath(path)} is not a result file of this version of trackedcam"
        try:
            report = cls(pathlib.Path(path).read_text(encoding="utf-8"))
        except (ValueError, RecursionError) as error:
            raise InputError(f"{wrong}: {error}") from error
        if not isinstance(report.data, dict) or not _KEYS <= report.data.keys():
            raise InputError(wrong)
        return report

    @property
    def _handle(self) -> _library.Handle:
        if isinstance(self._source, str):
            raise RuntimeError("a report that was loaded from a file cannot be exported or saved and has no page: use "
                               "the commands trackedcam export and trackedcam report")
        return self._source

    @property
    def json(self) -> str:
        """The report as JSON text, as in the program's result file."""
        if isinstance(self._source, str):
            return self._source
        text = ctypes.c_char_p()
        call("trackedcam_report_json", self._source.pointer, ctypes.byref(text))
        return _decoded(text)

    @property
    def data(self) -> dict[str, Any]:
        """The JSON as Python objects, without exports that are made later."""
        return self._data

    @property
    def level(self) -> str:
        """The verdict: "good", "doubt", "wrong" or "failed"."""
        return str(self._data["verdict"]["level"])

    @property
    def code(self) -> Optional[int]:
        """The library's result code: 0, 99 (usable), others a failure; None if an exception ended its call."""
        code: Optional[int] = self._data["code"]
        return code

    @property
    def message(self) -> str:
        """The verdict, one sentence."""
        return str(self._data["verdict"]["message"])

    @property
    def advice(self) -> str:
        """What to do next; empty if there is nothing to do."""
        return str(self._data["verdict"]["advice"])

    def numbers(self, pointer: str, shape: Optional[tuple[int, ...]] = None) -> Optional[Array]:
        """Returns the numbers at a place of the JSON text, such as "/normFocal".

        Args:
            pointer: a JSON pointer.
            shape: of the array; None: one dimension.

        Returns:
            A new array; None if there is no such place or it contains anything but numbers.
        """
        values = (_numbers_of(self._data, pointer) if isinstance(self._source, str) else
                  _numbers_from(self._source, pointer))
        if values is None:
            return None
        if shape is not None and values.size != np.prod(shape):
            return None
        return values if shape is None else values.reshape(shape)

    @property
    def transform_cam_tc(self) -> Array:
        """4×4, translation in metres: takes coordinates in the camera's tracker into its optical frame.

        Raises:
            CalibrationError: the library found none.
        """
        return self._found(self.numbers("/transformCamTc", (4, 4)))

    @property
    def lens(self) -> Lens:
        """The lens.

        Raises:
            CalibrationError: the library found none.
        """
        return self._found(self._lens())

    def _found(self, value: Optional[Value]) -> Value:
        if value is None:
            raise CalibrationError(self)
        return value

    def _lens(self) -> Optional[Lens]:
        size, focal, centre = (self.numbers(f"/{key}", (2,)) for key in ("imageSize", "normFocal", "normCenter"))
        distortion, focal_length = self.numbers("/distortion", (5,)), self.numbers("/focalLengthMm", (1,))
        field_of_view = self.numbers("/fieldOfView", (2,))
        if (size is None or focal is None or centre is None or distortion is None or focal_length is None
                or field_of_view is None):
            return None
        (fx, fy), (cx, cy) = focal * size, centre * size
        return Lens((int(size[0]), int(size[1])), np.array([[fx, 0, cx], [0, fy, cy], [0, 0, 1]]), distortion,
                    (float(field_of_view[0]), float(field_of_view[1])), float(focal_length[0]))

    @property
    def cross_check(self) -> Optional[CrossCheck]:
        """The cross-check; None if the run ended before the lens was known, or if it found no solution."""
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
                          array("standardErrorCamTc/translationMm", 3),
                          array("standardErrorCamTc/rotationDegrees", 3),
                          mounting, data)

    @property
    def findings(self) -> list[Finding]:
        """Facts about the shoot and the result, the worst first."""
        return [Finding(f["id"], f["severity"], f["text"], f["advice"], tuple(f.get("photographs", ())))
                for f in self._data["findings"]]

    @property
    def photographs(self) -> list[Photograph]:
        """One entry for each row of the data file, in its order. It holds through a second run: a photograph that
        the first run left out keeps its place."""
        return [Photograph(p["row"], p["name"], _path(p["path"]), p["state"], p["reason"], p["libraryErrorPixels"],
                           _path(p["reprojectedImage"]))
                for p in self._data["photographs"]]

    @property
    def log(self) -> Optional[pathlib.Path]:
        """The library's log; None if it could not write one. Its folder is that of the run."""
        return _path(self._data["log"])

    def export(self, name: str, parent_axes: Optional[str] = None, *, overscan: Optional[float] = None,
               even_if_wrong: bool = False) -> dict[str, Any]:
        """Exports the result to an engine: the pose of the camera relative to its tracker, in the engine's axes; or to
        a file of another program. Warns with CalibrationWarning if the result is in doubt or certainly wrong.

        Args:
            name: "unreal", "unity", "ue4", "ue5", "ue5-xn" or "aximmetry"; "opencv", "ros", "colmap", "opentrackio" or
                "stmap".
            parent_axes: for unreal, unity and opentrackio: X, Y, Z of the camera's parent in the reported axes of the
                tracker, such as "z,-x,y".
            overscan: for stmap: the undistorted picture in sizes of the photograph, from 1 to 4; None: as large as it
                must be to show all of the photograph.
            even_if_wrong: export a result that is certainly wrong too.

        Returns:
            For an engine, the values, with the units in their names, and a code: 0, or 3 for a gimbal lock. For a file,
            its text; for stmap, undistortedSize and overscan.

        Raises:
            InputError: the name, the axes or an option are invalid.
            CalibrationError: the calibration failed, or its result is certainly wrong.
            RuntimeError: the report was loaded from a file.
        """
        options = _export_options(parent_axes, overscan, even_if_wrong)
        text = ctypes.c_char_p()
        self._export("trackedcam_report_export_with", encoded(name), ctypes.byref(options), ctypes.byref(text))
        exported: dict[str, Any] = json.loads(_decoded(text))
        return exported

    def export_file(self, name: str, file: Path, *, parent_axes: Optional[str] = None, nodal_offset: bool = False,
                    overscan: Optional[float] = None, preview: Optional[Path] = None,
                    even_if_wrong: bool = False) -> None:
        """Writes the file of an export; an existing file is replaced. Warns and raises as export does.

        Args:
            name: "opencv", "ros", "colmap", "opentrackio" or "stmap"; "unreal" for a Lens File, .ulens.
            file: its path. stmap writes two: for lens.exr, lens_undistort.exr and lens_distort.exr.
            parent_axes, overscan, even_if_wrong: as for export.
            nodal_offset: for unreal: the file has the pose too, for a camera that the tracker moves itself.
            preview: for stmap: path of a PNG file with one photograph undistorted.
        """
        options = _export_options(parent_axes, overscan, even_if_wrong)
        options.nodal_offset = bool(nodal_offset)
        options.preview_file = None if preview is None else encoded(preview)
        self._export("trackedcam_report_export_file", encoded(name), ctypes.byref(options), encoded(file))

    def lens_file(self, name: str, parent_axes: Optional[str] = None) -> str:
        """Returns the content of a .ulens file for the Unreal editor, without the pose. Warns and raises as export
        does."""
        axes = None if parent_axes is None else encoded(parent_axes)
        text = ctypes.c_char_p()
        self._export("trackedcam_report_lens_file", axes, encoded(name), ctypes.byref(text))
        return _decoded(text)

    def _export(self, function: str, *arguments: Any) -> None:
        try:
            call(function, self._handle.pointer, *arguments)
        except _library.StatusError as error:
            has_failed = error.status == _library.NOT_FOUND and self.level == "failed"
            if has_failed or error.status == _library.WRONG_RESULT:
                raise CalibrationError(self) from error
            raise
        if self.level != "good":
            warnings.warn(self.message, CalibrationWarning, stacklevel=3)

    def page(self, folder: Optional[Path] = None) -> str:
        """Returns the report page: HTML that a browser shows without any other file.

        Args:
            folder: of the page, for its links to log and images; None: that of the run.

        Raises:
            MemoryError: there is not enough memory.
            RuntimeError: the report was loaded from a file.
        """
        text = ctypes.c_char_p()
        place = None if folder is None else encoded(folder)
        call("trackedcam_report_page", self._handle.pointer, place, ctypes.byref(text))
        return _decoded(text)

    def save(self, json_file: Optional[Path] = None, page_file: Optional[Path] = None) -> None:
        """Writes the result file and the report page, each if its path is given.

        Raises:
            RuntimeError: a file cannot be written, and an existing one stays unchanged; or the report was loaded from
                a file.
        """
        call("trackedcam_report_save", self._handle.pointer, None if json_file is None else encoded(json_file),
             None if page_file is None else encoded(page_file))

    def plot_photographs(self, ax: Optional[Any] = None) -> Any:
        """Draws the library's reprojection error of each photograph as a bar, in the order of the rows.

        Args:
            ax: axes of matplotlib to draw into; None: those of a new figure.

        Returns:
            The axes.

        Raises:
            ImportError: matplotlib is not installed.
        """
        return _plot.photographs(self.photographs, ax)

    def plot_views(self, ax: Optional[Any] = None) -> Any:
        """Draws how the chart was tilted in each photograph (degrees), its distance (metres) as colour, and the views
        that the cross-check suggests.

        Args:
            ax: axes of matplotlib to draw into; None: those of a new figure.

        Returns:
            The axes.

        Raises:
            CalibrationError: there is no cross-check.
            ImportError: matplotlib is not installed.
        """
        self._found(self.cross_check)
        return _plot.views(self._data, ax)

    def plot_uncertainty(self, ax: Optional[Any] = None) -> Any:
        """Draws the half-widths of the 95 % intervals of transform_cam_tc: millimetres along the axes of Cam, and
        degrees about them on a second scale. Args, Returns and Raises as for plot_views."""
        return _plot.uncertainty(self._found(self.cross_check), ax)

    def plot_corners(self, ax: Optional[Any] = None) -> Any:
        """Draws an arrow at each corner that the cross-check has, from where it was found to where trackers and
        solution predict it. The arrows are enlarged; their colour is the length in pixels. Args, Returns and
        Raises as for plot_views."""
        self._found(self.cross_check)
        return _plot.corners(self._data, ax)

    def __repr__(self) -> str:
        lens = self._lens()
        focal_length = "" if lens is None else f", {lens.focal_length_mm:.2f} mm"
        used = sum(photograph.state == "used" for photograph in self.photographs)
        return f"<trackedcam.Report {self.level}, code {self.code}, {used} photographs used{focal_length}>"

    def _repr_html_(self) -> str:
        rows = [("Verdict", html.escape(f"{self.level}: {self.message}"))]
        if self.advice:
            rows.append(("Advice", html.escape(self.advice)))
        rows.append(("Photographs", html.escape(self._data["photographCounts"]["text"])))
        lens, transform, check = self._lens(), self.numbers("/transformCamTc", (4, 4)), self.cross_check
        if lens is not None:
            k = lens.camera_matrix
            rows.append(("Lens", f"{lens.focal_length_mm:.3f} mm; fx {k[0, 0]:.2f}, fy {k[1, 1]:.2f}, "
                                 f"cx {k[0, 2]:.2f}, cy {k[1, 2]:.2f} pixels; "
                                 f"k1 {lens.distortion[0]:.5f}, k2 {lens.distortion[1]:.5f}"))
        if transform is not None:
            lines = "\n".join(" ".join(f"{number:10.6f}" for number in row) for row in transform)
            rows.append(("Transform_Cam_Tc (metres)", f"<pre>{lines}</pre>"))
        if check is not None:
            mm, degrees = (", ".join(f"{check.t95 * number:.{digits}f}" for number in numbers) for numbers, digits in
                           [(check.standard_error_mm, 2), (check.standard_error_deg, 3)])
            rows.append(("Known to, ± 95 %", f"x, y, z: {mm} mm; {degrees} degrees"))
        body = "".join(f"<tr><th>{name}</th><td>{value}</td></tr>" for name, value in rows)
        return f"<table>{body}</table>"


def _export_options(parent_axes: Optional[str], overscan: Optional[float],
                    even_if_wrong: bool) -> _library.ExportOptions:
    options = _library.ExportOptions()
    call("trackedcam_export_options_init", ctypes.byref(options), ctypes.sizeof(options))
    options.parent_axes = None if parent_axes is None else encoded(parent_axes)
    options.even_if_wrong = bool(even_if_wrong)
    if overscan is not None:
        # For the library, 0 means: as large as it must be.
        options.overscan = overscan if overscan != 0 else -1
    return options


def _numbers_from(handle: _library.Handle, pointer: str) -> Optional[Array]:
    count = ctypes.c_size_t()
    arguments = handle.pointer, encoded(pointer)
    try:
        call("trackedcam_report_numbers", *arguments, None, 0, ctypes.byref(count))
    except _library.StatusError as error:
        if error.status == _library.NOT_FOUND:
            return None
        if error.status != _library.TOO_SMALL:
            raise
    values = np.empty(count.value, dtype=np.float64)
    place = values.ctypes.data_as(ctypes.POINTER(ctypes.c_double))
    call("trackedcam_report_numbers", *arguments, place, values.size, ctypes.byref(count))
    return values


def _numbers_of(data: Any, pointer: str) -> Optional[Array]:
    """The same of a report that was loaded."""
    for key in pointer.split("/")[1:]:
        try:
            if isinstance(data, list) and not key.isdecimal():
                return None
            data = data[int(key)] if isinstance(data, list) else data[key.replace("~1", "/").replace("~0", "~")]
        except (IndexError, KeyError, TypeError):
            return None
    numbers: list[float] = []
    return np.array(numbers) if data is not None and _add_numbers(data, numbers) else None


def _add_numbers(data: Any, numbers: list[float]) -> bool:
    """Whether there are only numbers, which are added, and lists of them."""
    if isinstance(data, list):
        return all(_add_numbers(element, numbers) for element in data)
    if data is not None and (isinstance(data, bool) or not isinstance(data, (int, float))):
        return False
    numbers.append(float("nan") if data is None else float(data))
    return True


def _path(text: Optional[str]) -> Optional[pathlib.Path]:
    return pathlib.Path(text) if text else None


def _decoded(text: ctypes.c_char_p) -> str:
    return (text.value or b"").decode()
