"""Makes a shoot of a film and a continuous recording of both trackers."""

from __future__ import annotations

import ctypes
import json
import pathlib
from typing import Any, Optional

from . import _library
from ._library import Handle, call, encoded
from ._numbers import Numbers, floats, whole_numbers
from ._report import Path


class Pairing:
    """What a pairing found.

    Attributes:
        delay_s: what the clock of the poses shows where that of the film shows 0, seconds; both with the drift of `data`.
        delay_half_s: half the width of its 95 % interval, seconds.
        shoot: the data file of the shoot, for `trackedcam.calibrate`.
        text: what was found, a few sentences.
        data: all values, the content of pairing.json.
    """

    def __init__(self, data: dict[str, Any], folder: pathlib.Path) -> None:
        self.data = data
        self.delay_s: float = data["delaySeconds"]
        self.delay_half_s: float = 1e-3 * data["delayHalfMs"]
        self.shoot = folder / "tracker_data.csv"
        self.text: list[str] = data["text"]

    def __repr__(self) -> str:
        return f"<Pairing {self.text[0]}>"


def pair(camera_poses: Path, chart_poses: Optional[Path], frames: Path, out: Path, *, board: Numbers, square_m: float,
         times: Optional[Path] = None, fps: Optional[float] = None, photographs: int = 40,
         pose_format: Optional[str] = None, columns: Optional[str] = None, pose_unit: Optional[str] = None,
         time_unit: Optional[str] = None, sensor_mm: Optional[Numbers] = None) -> Pairing:
    """Finds the delay between film and recording, chooses frames, and writes a shoot.

    Args:
        camera_poses: file with the poses of the tracker on the camera.
        chart_poses: the same of the tracker on the chart; None: the chart has no tracker and did not move.
        frames: folder with the frames of the film as pictures.
        out: folder for the shoot, empty or missing.
        board: inner corners of the chart, along a row and along a column.
        square_m: edge of one of its squares, metres.
        times: CSV file with the header `frame,time`, seconds; or `fps`.
        fps: frames per second.
        photographs: how many frames are chosen, at most.
        pose_format: "tum", "euroc", "opentrackio" or "csv"; None: recognised in the file.
        columns: of a CSV file, "time=t,x=px,y=py,z=pz,qw=w,qx=x,qy=y,qz=z"; None: recognised.
        pose_unit: "m", "cm", "mm" or "in"; None: the header's, otherwise m.
        time_unit: "s", "ms", "us" or "ns"; None: the header's or the format's.
        sensor_mm: width and height of the sensor for shoot.toml, millimetres; None: 36 wide.

    Raises:
        InputError: a file cannot be read, the folder is not empty, or the recording cannot be paired; the message says
            why and what to record.
    """
    options = _library.PairOptions()
    call("trackedcam_pair_options_init", ctypes.byref(options), ctypes.sizeof(options))
    options.board_columns, options.board_rows = whole_numbers("board", board, 2)
    options.square_m = square_m
    options.photographs = photographs
    options.frames_per_second = fps or 0
    if sensor_mm is not None:
        options.sensor_width_mm, options.sensor_height_mm = floats("sensor_mm", sensor_mm, 2)
    for name, path in (("camera_poses", camera_poses), ("chart_poses", chart_poses), ("frames", frames),
                       ("times", times), ("out_folder", out)):
        if path is not None:
            setattr(options, name, encoded(path))
    for name, value in (("pose_format", pose_format), ("columns", columns), ("pose_unit", pose_unit),
                        ("time_unit", time_unit)):
        if value is not None:
            setattr(options, name, value.encode())
    handle, text = Handle("trackedcam_pairing_free"), ctypes.c_char_p()
    call("trackedcam_pair", ctypes.byref(options), ctypes.byref(handle.pointer))
    call("trackedcam_pairing_json", handle.pointer, ctypes.byref(text))
    return Pairing(json.loads((text.value or b"").decode()), pathlib.Path(out))
