"""Calibrates shoots, waiting or in the background."""

from __future__ import annotations

import ctypes
import os
import warnings
from collections.abc import Sequence
from typing import Any, Callable, NamedTuple, Optional, Union

from . import _library
from ._library import Handle, call, encoded
from ._numbers import Numbers, Rows, floats, state_distances, table, whole_numbers
from ._report import CalibrationError, CalibrationWarning, Path, Report

_POLL_MS = 50
_AXES = ("reported", "unreal", "unity")
_UNITS = (None, "m", "cm", "mm", "in")
_ORDERS = ("wxyz", "xyzw")
_MOUNTING_AXES = ("fixed", "reported")


class Progress(NamedTuple):
    """Progress of a run. photographs_in_all is 0 in a stage that does not go through the photographs."""

    stage: str
    photographs_done: int
    photographs_in_all: int


Listener = Callable[[Progress], Any]


class Shoot:
    """The rows of a shoot in memory, in the axes and the unit that are passed to start or calibrate.

    When a run starts, they are written to shoot_001/tracker_data.csv below its log folder.
    """

    def __init__(self) -> None:
        self._handle = Handle("trackedcam_shoot_free")
        call("trackedcam_shoot_create", ctypes.byref(self._handle.pointer))

    @classmethod
    def from_arrays(cls, photographs: Sequence[Path], camera_positions: Rows, camera_quaternions_wxyz: Rows,
                    chart_positions: Rows, chart_quaternions_wxyz: Rows, times_s: Optional[Numbers] = None) -> Shoot:
        """Makes a shoot of n photographs from arrays, in the order of the photographs.

        Args:
            photographs: n paths, without commas.
            camera_positions: n×3: x, y, z of the tracker on the camera.
            camera_quaternions_wxyz: n×4: its orientations, of any length but 0.
            chart_positions: n×3: x, y, z of the tracker on the chart.
            chart_quaternions_wxyz: n×4: its orientations.
            times_s: n times in seconds, from any origin; only for the data file. None: 0, 1, 2 and so on.

        Raises:
            InputError: the arrays have other shapes, or a row is refused as by add.
        """
        columns = [table("camera_positions", camera_positions, 3),
                   table("camera_quaternions_wxyz", camera_quaternions_wxyz, 4),
                   table("chart_positions", chart_positions, 3),
                   table("chart_quaternions_wxyz", chart_quaternions_wxyz, 4)]
        count = len(photographs)
        if any(len(column) != count for column in columns):
            lengths = ", ".join(str(len(column)) for column in columns)
            raise _library.InputError(f"{count} photographs, but {lengths} rows of poses")
        times = range(count) if times_s is None else floats("times_s", times_s, count)
        shoot = cls()
        for i, photograph in enumerate(photographs):
            camera_position, camera_quaternion, chart_position, chart_quaternion = (column[i] for column in columns)
            shoot.add(photograph, camera_position, camera_quaternion, chart_position, chart_quaternion, times[i])
        return shoot

    def add(self, photograph: Path, camera_position: Numbers, camera_quaternion_wxyz: Numbers,
            chart_position: Numbers, chart_quaternion_wxyz: Numbers, time_s: float = 0) -> None:
        """Adds a photograph.

        Args:
            photograph: its path, without commas.
            camera_position: x, y, z of the tracker on the camera.
            camera_quaternion_wxyz: its orientation, of any length but 0.
            chart_position: x, y, z of the tracker on the chart.
            chart_quaternion_wxyz: its orientation.
            time_s: time of the photograph in seconds, from any origin; only for the data file.

        Raises:
            InputError: a comma in the path, an infinite or NaN value, or a quaternion of length 0.
        """
        camera = _pose("camera", camera_position, camera_quaternion_wxyz)
        chart = _pose("chart", chart_position, chart_quaternion_wxyz)
        call("trackedcam_shoot_add", self._handle.pointer, time_s, encoded(photograph), ctypes.byref(camera),
             ctypes.byref(chart))

    def save(self, path: Path) -> None:
        """Writes the rows to a tracker data file; an existing file is replaced.

        Raises:
            InputError: the shoot has no photographs.
            RuntimeError: the file cannot be written.
        """
        call("trackedcam_shoot_save", self._handle.pointer, encoded(path))


def _pose(tracker: str, position: Numbers, quaternion: Numbers) -> _library.Pose:
    return _library.Pose((ctypes.c_double * 3)(*floats(f"{tracker}_position", position, 3)),
                         (ctypes.c_double * 4)(*floats(f"{tracker}_quaternion_wxyz", quaternion, 4)))


class Run:
    """A calibration in the background. It cannot be cancelled: without references, it continues to its end."""

    def __init__(self, handle: Handle) -> None:
        self._handle = handle

    @property
    def is_done(self) -> bool:
        """Whether it has ended."""
        return self.wait(0)

    @property
    def progress(self) -> Progress:
        """How far it is."""
        done, progress = ctypes.c_int32(), _library.ProgressStruct()
        call("trackedcam_run_poll", self._handle.pointer, ctypes.byref(done), ctypes.byref(progress),
             ctypes.sizeof(progress))
        return Progress(progress.stage.decode(), progress.photographs_done, progress.photographs_in_all)

    def wait(self, timeout_s: Optional[float] = None) -> bool:
        """Waits for the end of the run, or for a time. Other threads run meanwhile; Ctrl-C raises at once.

        Args:
            timeout_s: longest time to wait, in seconds; None: no limit.

        Returns:
            Whether the run has ended.
        """
        left_ms = None if timeout_s is None else round(1000 * timeout_s)
        done = ctypes.c_int32()
        while True:
            # In short steps, because Python handles Ctrl-C between calls.
            step = _POLL_MS if left_ms is None else max(0, min(_POLL_MS, left_ms))
            call("trackedcam_run_wait", self._handle.pointer, step, ctypes.byref(done))
            if left_ms is not None:
                left_ms -= step
            if done.value or (left_ms is not None and left_ms <= 0):
                return bool(done.value)

    def report(self) -> Report:
        """Waits for the end and returns the report, also that of a failed calibration.

        Raises:
            InputError: the run could not start.
        """
        self.wait()
        handle = Handle("trackedcam_report_free")
        call("trackedcam_run_report", self._handle.pointer, ctypes.byref(handle.pointer))
        return Report(handle)


def start(data: Union[Path, Sequence[Path], Shoot], *, sensor_mm: Numbers, board: Numbers, square_m: float, log_folder: Path,
          chart_rotation_deg: Optional[Numbers] = None, chart_translation_m: Optional[Numbers] = None,
          mounting_axes: str = "fixed", tracker_axes: str = "reported", tracker_unit: Optional[str] = None,
          quaternion_order: str = "wxyz", invert_tracker_quaternions: bool = False,
          expected_records: Optional[int] = None, refine_mounting: bool = False, good_enough: Numbers = (2, 0.2),
          scale_uncertainty_percent: float = 0.1, working_folder: Optional[Path] = None,
          exclude: Sequence[Path] = (), at_m: Numbers = ()) -> Run:
    """Starts to calibrate a shoot in the background and returns at once.

    Args:
        data: the tracker data file, a list of them if the shoot was continued, or a Shoot.
        sensor_mm: width and height of the camera's sensor, millimetres.
        board: inner corners of the chart along a row and along a column.
        square_m: edge of one square, metres.
        log_folder: folder for logs and reprojected images; each run creates a subfolder.
        chart_rotation_deg: rotation of the mounting of the chart's tracker: the angles of Rx · Ry · Rz, degrees.
            Without rotation and translation, the mounting is found from the shoot.
        chart_translation_m: translation of the mounting, metres.
        mounting_axes: axes of the mounting: "fixed" (those of the library) or "reported".
        tracker_axes: coordinate system of the poses: "reported", "unreal" or "unity".
        tracker_unit: unit of the positions: "m", "cm", "mm" or "in"; None: cm for unreal, otherwise m.
        quaternion_order: order of the four fields of a quaternion: "wxyz" or "xyzw".
        invert_tracker_quaternions: the quaternions of the trackers are inverted.
        expected_records: number of rows that were recorded; None: do not check.
        refine_mounting: calibrate again if the cross-check finds another mounting or bad photographs.
        good_enough: how far off the result may be without a doubt: millimetres and degrees, both above 0.
        scale_uncertainty_percent: how accurately the edge of the squares is known against the trackers' lengths.
        working_folder: folder of relative paths of photographs; None: that of the data file, or the working
            directory for a Shoot.
        exclude: photographs to leave out: paths as in the data file or the ends of them, with or without the file's
            ending, such as ["img_003", "img_007"].
        at_m: distances at which the error in the image is stated, metres, such as (4, 8); empty: the chart's, 2, 4
            and 10.

    Raises:
        InputError: a value is invalid; the message says which.
    """
    settings = _library.Settings()
    call("trackedcam_settings_init", ctypes.byref(settings), ctypes.sizeof(settings))
    settings.sensor_width_mm, settings.sensor_height_mm = floats("sensor_mm", sensor_mm, 2)
    settings.board_columns, settings.board_rows = whole_numbers("board", board, 2)
    settings.square_m = square_m
    _state_mounting(settings, chart_rotation_deg, chart_translation_m, mounting_axes)
    settings.tracker_axes = _index("tracker_axes", _AXES, tracker_axes)
    settings.tracker_unit = _index("tracker_unit", _UNITS, tracker_unit)
    settings.quaternion_order = _index("quaternion_order", _ORDERS, quaternion_order)
    settings.invert_tracker_quaternions = bool(invert_tracker_quaternions)
    settings.refine_mounting = bool(refine_mounting)
    settings.good_enough_mm, settings.good_enough_deg = floats("good_enough", good_enough, 2)
    settings.scale_uncertainty_percent = scale_uncertainty_percent
    settings.exclude = _names(exclude)
    state_distances(settings, at_m)
    if expected_records is not None:
        # For the library, -1 means: do not check.
        settings.expected_records = int(expected_records) if expected_records >= 0 else -2
    settings.log_folder = encoded(log_folder)
    if working_folder is not None:
        settings.working_folder = encoded(working_folder)
    shoot = data._handle if isinstance(data, Shoot) else Handle("trackedcam_shoot_free")
    if not isinstance(data, Shoot):
        first, *more = [data] if isinstance(data, (str, os.PathLike)) else data
        call("trackedcam_shoot_open", encoded(first), ctypes.byref(shoot.pointer))
        for file in more:
            call("trackedcam_shoot_continue", shoot.pointer, encoded(file))
    handle = Handle("trackedcam_run_free")
    call("trackedcam_start", shoot.pointer, ctypes.byref(settings), ctypes.byref(handle.pointer))
    return Run(handle)


def calibrate(data: Union[Path, Sequence[Path], Shoot], *, sensor_mm: Numbers, board: Numbers, square_m: float, log_folder: Path,
              chart_rotation_deg: Optional[Numbers] = None, chart_translation_m: Optional[Numbers] = None,
              mounting_axes: str = "fixed", tracker_axes: str = "reported", tracker_unit: Optional[str] = None,
              quaternion_order: str = "wxyz", invert_tracker_quaternions: bool = False,
              expected_records: Optional[int] = None, refine_mounting: bool = False, good_enough: Numbers = (2, 0.2),
              scale_uncertainty_percent: float = 0.1, working_folder: Optional[Path] = None,
              exclude: Sequence[Path] = (), at_m: Numbers = (),
              progress: Union[Listener, bool, None] = None) -> Report:
    """Calibrates a shoot and waits for the end.

    Args:
        data: the tracker data file, a list of them if the shoot was continued, or a Shoot.
        sensor_mm: width and height of the camera's sensor, millimetres.
        board: inner corners of the chart along a row and along a column.
        square_m: edge of one square, metres.
        log_folder: folder for logs and reprojected images; each run creates a subfolder.
        chart_rotation_deg: rotation of the mounting of the chart's tracker: the angles of Rx · Ry · Rz, degrees.
            Without rotation and translation, the mounting is found from the shoot.
        chart_translation_m: translation of the mounting, metres.
        mounting_axes: axes of the mounting: "fixed" (those of the library) or "reported".
        tracker_axes: coordinate system of the poses: "reported", "unreal" or "unity".
        tracker_unit: unit of the positions: "m", "cm", "mm" or "in"; None: cm for unreal, otherwise m.
        quaternion_order: order of the four fields of a quaternion: "wxyz" or "xyzw".
        invert_tracker_quaternions: the quaternions of the trackers are inverted.
        expected_records: number of rows that were recorded; None: do not check.
        refine_mounting: calibrate again if the cross-check finds another mounting or bad photographs.
        good_enough: how far off the result may be without a doubt: millimetres and degrees, both above 0.
        scale_uncertainty_percent: how accurately the edge of the squares is known against the trackers' lengths.
        working_folder: folder of relative paths of photographs; None: that of the data file, or the working
            directory for a Shoot.
        exclude: photographs to leave out: paths as in the data file or the ends of them, with or without the file's
            ending, such as ["img_003", "img_007"].
        at_m: distances at which the error in the image is stated, metres, such as (4, 8); empty: the chart's, 2, 4
            and 10.
        progress: called with a Progress on this thread; True shows a progress bar if tqdm is installed.

    Returns:
        The report. Warns with CalibrationWarning if the result is in doubt or certainly wrong.

    Raises:
        CalibrationError: there is no usable result; has the report and the advice.
        InputError: a value is invalid or the run could not start; the message says why.
        KeyboardInterrupt: at once, for Ctrl-C; the run ends in the background.
    """
    run = start(data, sensor_mm=sensor_mm, board=board, square_m=square_m, log_folder=log_folder,
                chart_rotation_deg=chart_rotation_deg, chart_translation_m=chart_translation_m,
                mounting_axes=mounting_axes, tracker_axes=tracker_axes, tracker_unit=tracker_unit,
                quaternion_order=quaternion_order, invert_tracker_quaternions=invert_tracker_quaternions,
                expected_records=expected_records, refine_mounting=refine_mounting, good_enough=good_enough,
                scale_uncertainty_percent=scale_uncertainty_percent, working_folder=working_folder,
                exclude=exclude, at_m=at_m)
    listener = _bar() if progress is True else progress or None
    seen: Optional[Progress] = None
    while not run.wait(_POLL_MS / 1000):
        now = run.progress
        if listener is not None and now != seen and now.stage:
            listener(now)
            seen = now
    if listener is not None and run.progress != seen and run.progress.stage:
        listener(run.progress)
    return _judged(run.report())


def crosscheck(log: Path, *, chart_rotation_deg: Optional[Numbers] = None,
               chart_translation_m: Optional[Numbers] = None, mounting_axes: str = "fixed",
               good_enough: Numbers = (2, 0.2), scale_uncertainty_percent: float = 0.1,
               exclude: Sequence[Path] = (), at_m: Numbers = ()) -> Report:
    """Cross-checks a calibration from the log that the library wrote, in any host.

    Args:
        log: the log file.
        chart_rotation_deg, chart_translation_m, mounting_axes: the mounting that the host passed to the library, as
            for start; None if it is not known.
        good_enough, scale_uncertainty_percent: as for start.
        exclude: photographs that the cross-check leaves out, as for start.
        at_m: distances at which the error in the image is stated, as for start.

    Raises:
        InputError: the file is not the log of a calibration, or a value is invalid.
    """
    settings = _library.Settings()
    call("trackedcam_settings_init", ctypes.byref(settings), ctypes.sizeof(settings))
    _state_mounting(settings, chart_rotation_deg, chart_translation_m, mounting_axes)
    settings.good_enough_mm, settings.good_enough_deg = floats("good_enough", good_enough, 2)
    settings.scale_uncertainty_percent = scale_uncertainty_percent
    settings.exclude = _names(exclude)
    state_distances(settings, at_m)
    handle = Handle("trackedcam_report_free")
    call("trackedcam_crosscheck", encoded(log), ctypes.byref(settings), ctypes.byref(handle.pointer))
    return Report(handle)


def _judged(report: Report) -> Report:
    if report.level == "failed":
        raise CalibrationError(report)
    if report.level != "good":
        warnings.warn(f"{report.message} {report.advice}".strip(), CalibrationWarning, stacklevel=3)
    return report


def _state_mounting(settings: _library.Settings, rotation: Optional[Numbers],
                    translation: Optional[Numbers], axes: str) -> None:
    settings.mounting_axes = _index("mounting_axes", _MOUNTING_AXES, axes)
    if (rotation is None) != (translation is None):
        raise _library.InputError("a mounting needs both rotation and translation")
    if rotation is not None and translation is not None:
        settings.mounting_is_stated = 1
        settings.chart_rotation_deg[:] = floats("chart_rotation_deg", rotation, 3)
        settings.chart_translation_m[:] = floats("chart_translation_m", translation, 3)


def _names(exclude: Sequence[Path]) -> bytes:
    names = [exclude] if isinstance(exclude, (str, bytes)) else exclude
    return b",".join(encoded(name) for name in names)


def _index(name: str, known: Sequence[Optional[str]], value: Optional[str]) -> int:
    if value not in known:
        raise _library.InputError(f"{name} is {value!r}, expected one of {', '.join(map(repr, known))}")
    return known.index(value)


def _bar() -> Optional[Listener]:
    try:
        from tqdm import tqdm  # type: ignore[import]
    except ImportError:
        return None
    bar = tqdm(unit=" photographs")

    def show(progress: Progress) -> None:
        bar.set_description(progress.stage)
        bar.total = progress.photographs_in_all or None
        bar.n = progress.photographs_done
        bar.refresh()

    return show
