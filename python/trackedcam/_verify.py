"""Verifies that a calibration still holds, and compares calibrations."""

from __future__ import annotations

import ctypes
import html
import json
from typing import Any, Optional

from . import _library
from ._library import Handle, call, encoded
from ._numbers import Numbers, state_distances, whole_numbers
from ._report import Path


class Verification:
    """What a verification found.

    Attributes:
        answer: "holds", "cameraTrackerMoved", "chartTrackerMoved", "bothTrackersMoved", "lensChanged",
            "lensAndTracker", "unclear", "unrelated" or "tooFew".
        holds: whether the calibration still holds.
        message: the answer, one sentence.
        details: what else is known: sizes of the change with 95 % intervals, or what would have been found.
        advice: the next step.
        data: all values, as `trackedcam verify --json` prints them.
    """

    def __init__(self, data: dict[str, Any]) -> None:
        self.data = data
        self.answer: str = data["answer"]
        self.holds = self.answer == "holds"
        self.message: str = data["message"]
        self.details: list[str] = data["details"]
        self.advice: str = data["advice"]

    def __repr__(self) -> str:
        return f"<Verification {self.answer}: {self.message}>"

    def _repr_html_(self) -> str:
        rows = [("Answer", self.message), *(("", detail) for detail in self.details), ("Advice", self.advice)]
        body = "".join(f"<tr><th>{name}</th><td>{html.escape(text)}</td></tr>" for name, text in rows if text)
        return f"<table>{body}</table>"


def verify(result: Path, data: Path, *, chart_remounted: bool = False, board: Optional[Numbers] = None,
           square_m: Optional[float] = None, working_folder: Optional[Path] = None,
           at_m: Numbers = ()) -> Verification:
    """Tests new photographs against a calibration.

    Args:
        result: the result file of the calibration.
        data: the tracker data file of three or more new photographs, in the axes and the unit of the calibration's.
        chart_remounted: the chart was mounted anew, or is another one; its mounting is then found.
        board: inner corners of another chart, along a row and along a column; None: the result's.
        square_m: edge of one square of another chart, metres; None: the result's.
        working_folder: folder of relative paths of photographs; None: that of the data file.
        at_m: distances at which the error in the image is stated, metres, such as (4, 8); empty: the chart's, 2, 4
            and 10.

    Raises:
        InputError: the result is of an older form, cut, edited or wrong, or the photographs, the board or the squares
            have another size; the message says which.
    """
    options = _library.VerifyOptions()
    call("trackedcam_verify_options_init", ctypes.byref(options), ctypes.sizeof(options))
    options.chart_remounted = int(chart_remounted)
    if board is not None:
        options.board_columns, options.board_rows = whole_numbers("board", board, 2)
    if square_m is not None:
        options.square_m = square_m
    if working_folder is not None:
        options.working_folder = encoded(working_folder)
    state_distances(options, at_m)
    handle, text = Handle("trackedcam_verification_free"), ctypes.c_char_p()
    call("trackedcam_verify", encoded(result), encoded(data), ctypes.byref(options), ctypes.byref(handle.pointer))
    call("trackedcam_verification_json", handle.pointer, ctypes.byref(text))
    return Verification(json.loads((text.value or b"").decode()))


class Comparison:
    """What two results of one camera differ by: the second minus the first.

    Attributes:
        conclusion: whether they differ, and whether by chance, one sentence.
        data: all values, as `trackedcam compare --json` prints them.
    """

    def __init__(self, data: dict[str, Any]) -> None:
        self.data = data
        self.conclusion: str = data["conclusion"]

    def __repr__(self) -> str:
        return f"<Comparison: {self.conclusion}>"


def compare(first: Path, second: Path) -> Comparison:
    """Compares two results.

    Args:
        first: a result file.
        second: another one.

    Raises:
        InputError: a file has no result, or the photographs or the charts have different sizes.
    """
    handle, text = Handle("trackedcam_comparison_free"), ctypes.c_char_p()
    call("trackedcam_compare", encoded(first), encoded(second), ctypes.byref(handle.pointer))
    call("trackedcam_comparison_json", handle.pointer, ctypes.byref(text))
    return Comparison(json.loads((text.value or b"").decode()))
