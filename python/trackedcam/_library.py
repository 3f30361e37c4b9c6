"""Finds the C library and declares its functions.

The declarations have the names of trackedcam_c.h; a test compares them with it.
"""

from __future__ import annotations

import ctypes
import os
import pathlib
import sys
from ctypes import POINTER, c_char_p, c_double, c_int32, c_size_t, c_uint32, c_void_p
from typing import Any

OK, INVALID_ARGUMENT, BAD_INPUT, NOT_FOUND, NOT_DONE, TOO_SMALL, OUT_OF_MEMORY, FAILURE, WRONG_RESULT = range(9)


class InputError(ValueError):
    """The input cannot be calibrated or exported; the message says what to change."""


class Pose(ctypes.Structure):
    _fields_ = [("position", c_double * 3), ("quaternion_wxyz", c_double * 4)]


class Settings(ctypes.Structure):
    _fields_ = [
        ("struct_size", c_uint32),
        ("board_columns", c_int32),
        ("board_rows", c_int32),
        ("expected_records", c_int32),
        ("sensor_width_mm", c_double),
        ("sensor_height_mm", c_double),
        ("square_m", c_double),
        ("chart_rotation_deg", c_double * 3),
        ("chart_translation_m", c_double * 3),
        ("mounting_is_stated", c_int32),
        ("mounting_axes", c_int32),
        ("tracker_axes", c_int32),
        ("tracker_unit", c_int32),
        ("invert_tracker_quaternions", c_int32),
        ("refine_mounting", c_int32),
        ("quaternion_order", c_int32),
        ("at_count", c_int32),
        ("working_folder", c_char_p),
        ("log_folder", c_char_p),
        ("good_enough_mm", c_double),
        ("good_enough_deg", c_double),
        ("scale_uncertainty_percent", c_double),
        ("exclude", c_char_p),
        ("at_m", POINTER(c_double)),
    ]


class ExportOptions(ctypes.Structure):
    _fields_ = [
        ("struct_size", c_uint32),
        ("even_if_wrong", c_int32),
        ("nodal_offset", c_int32),
        ("reserved", c_int32),
        ("overscan", c_double),
        ("parent_axes", c_char_p),
        ("preview_file", c_char_p),
    ]


class VerifyOptions(ctypes.Structure):
    _fields_ = [
        ("struct_size", c_uint32),
        ("chart_remounted", c_int32),
        ("board_columns", c_int32),
        ("board_rows", c_int32),
        ("square_m", c_double),
        ("working_folder", c_char_p),
        ("at_m", POINTER(c_double)),
        ("at_count", c_int32),
        ("reserved", c_int32),
    ]


class PairOptions(ctypes.Structure):
    _fields_ = [
        ("struct_size", c_uint32),
        ("board_columns", c_int32),
        ("board_rows", c_int32),
        ("photographs", c_int32),
        ("square_m", c_double),
        ("camera_poses", c_char_p),
        ("chart_poses", c_char_p),
        ("frames", c_char_p),
        ("times", c_char_p),
        ("frames_per_second", c_double),
        ("pose_format", c_char_p),
        ("columns", c_char_p),
        ("pose_unit", c_char_p),
        ("time_unit", c_char_p),
        ("sensor_width_mm", c_double),
        ("sensor_height_mm", c_double),
        ("out_folder", c_char_p),
    ]


class ProgressStruct(ctypes.Structure):
    _fields_ = [("stage", ctypes.c_char * 64), ("photographs_done", c_int32), ("photographs_in_all", c_int32)]


# The arguments of each function; each returns a status.
FUNCTIONS: dict[str, list[Any]] = {
    "trackedcam_shoot_create": [POINTER(c_void_p)],
    "trackedcam_shoot_open": [c_char_p, POINTER(c_void_p)],
    "trackedcam_shoot_continue": [c_void_p, c_char_p],
    "trackedcam_shoot_add": [c_void_p, c_double, c_char_p, POINTER(Pose), POINTER(Pose)],
    "trackedcam_shoot_save": [c_void_p, c_char_p],
    "trackedcam_shoot_free": [c_void_p],
    "trackedcam_settings_init": [POINTER(Settings), c_size_t],
    "trackedcam_start": [c_void_p, POINTER(Settings), POINTER(c_void_p)],
    "trackedcam_run_poll": [c_void_p, POINTER(c_int32), POINTER(ProgressStruct), c_size_t],
    "trackedcam_run_wait": [c_void_p, c_int32, POINTER(c_int32)],
    "trackedcam_run_report": [c_void_p, POINTER(c_void_p)],
    "trackedcam_run_free": [c_void_p],
    "trackedcam_crosscheck": [c_char_p, POINTER(Settings), POINTER(c_void_p)],
    "trackedcam_report_json": [c_void_p, POINTER(c_char_p)],
    "trackedcam_report_numbers": [c_void_p, c_char_p, POINTER(c_double), c_size_t, POINTER(c_size_t)],
    "trackedcam_export_options_init": [POINTER(ExportOptions), c_size_t],
    "trackedcam_report_export_with": [c_void_p, c_char_p, POINTER(ExportOptions), POINTER(c_char_p)],
    "trackedcam_report_export_file": [c_void_p, c_char_p, POINTER(ExportOptions), c_char_p],
    "trackedcam_report_lens_file": [c_void_p, c_char_p, c_char_p, POINTER(c_char_p)],
    "trackedcam_report_page": [c_void_p, c_char_p, POINTER(c_char_p)],
    "trackedcam_report_save": [c_void_p, c_char_p, c_char_p],
    "trackedcam_report_free": [c_void_p],
    "trackedcam_verify_options_init": [POINTER(VerifyOptions), c_size_t],
    "trackedcam_verify": [c_char_p, c_char_p, POINTER(VerifyOptions), POINTER(c_void_p)],
    "trackedcam_verification_json": [c_void_p, POINTER(c_char_p)],
    "trackedcam_verification_free": [c_void_p],
    "trackedcam_pair_options_init": [POINTER(PairOptions), c_size_t],
    "trackedcam_pair": [POINTER(PairOptions), POINTER(c_void_p)],
    "trackedcam_pairing_json": [c_void_p, POINTER(c_char_p)],
    "trackedcam_pairing_free": [c_void_p],
    "trackedcam_compare": [c_char_p, c_char_p, POINTER(c_void_p)],
    "trackedcam_comparison_json": [c_void_p, POINTER(c_char_p)],
    "trackedcam_comparison_free": [c_void_p],
}


def _candidates() -> list[str]:
    """The places of the library, in the order of search."""
    if "TRACKEDCAM_C_LIBRARY" in os.environ:
        return [os.environ["TRACKEDCAM_C_LIBRARY"]]
    here = pathlib.Path(__file__).resolve().parent
    name = "trackedcam_c.dll" if sys.platform == "win32" else "libtrackedcam_c.so.1"
    # In the package (of a wheel), below the prefix of the installation, and where the system searches.
    places = [here / name]
    for prefix in list(here.parents)[:5]:
        places += [prefix / "bin" / name, prefix / "lib" / name, *sorted(prefix.glob(f"lib/*-linux-gnu/{name}"))]
    return [str(place) for place in places if place.is_file()] + [name]


def _load() -> ctypes.CDLL:
    path = _candidates()[0]
    try:
        library = ctypes.CDLL(path)
    except OSError as error:
        raise ImportError(f"trackedcam's library cannot be loaded: {error}. Set the environment variable "
                          "TRACKEDCAM_C_LIBRARY to its path.") from error
    for name, arguments in FUNCTIONS.items():
        function = getattr(library, name)
        function.argtypes = arguments
        function.restype = c_int32
    for name in ("trackedcam_c_version", "trackedcam_last_error"):
        getattr(library, name).argtypes = []
        getattr(library, name).restype = c_char_p
    return library


LIBRARY = _load()
VERSION: str = LIBRARY.trackedcam_c_version().decode()


class StatusError(RuntimeError):
    """An error of a call, with its status."""

    def __init__(self, status: int, message: str) -> None:
        super().__init__(message)
        self.status = status


def call(name: str, *arguments: Any) -> None:
    """Calls a function of the library; raises unless it returns OK."""
    status = getattr(LIBRARY, name)(*arguments)
    if status == OK:
        return
    message = LIBRARY.trackedcam_last_error().decode()
    if status == BAD_INPUT:
        raise InputError(message)
    if status == OUT_OF_MEMORY:
        raise MemoryError(message)
    raise StatusError(status, message)


def encoded(path: str | os.PathLike[str]) -> bytes:
    """Encodes a path or text for the library."""
    text = os.fspath(path)
    if "\0" in text:
        raise InputError(f"{text!r} contains a zero character")
    return text.encode("utf-8", "surrogatepass")


class Handle:
    """A handle of the library, freed with its object."""

    def __init__(self, free: str) -> None:
        self.pointer = c_void_p()
        self._free = getattr(LIBRARY, free)

    def __deepcopy__(self, memo: dict[int, Any]) -> Handle:
        # What a handle stands for does not change, so copies of its owner share it.
        return self

    def __del__(self) -> None:
        if self.pointer:
            self._free(self.pointer)
