"""Lists of numbers as arguments: sequences and NumPy arrays."""

from __future__ import annotations

import ctypes
from collections.abc import Sequence
from typing import Any, Union

import numpy as np
import numpy.typing as npt

from . import _library
from ._library import InputError

Numbers = Union[Sequence[float], "npt.NDArray[np.floating[Any]]", "npt.NDArray[np.integer[Any]]"]
Rows = Union[Sequence[Numbers], "npt.NDArray[np.floating[Any]]", "npt.NDArray[np.integer[Any]]"]


def floats(name: str, numbers: Numbers, count: int) -> list[float]:
    """A list of that length.

    Raises:
        InputError: another length, or no numbers.
    """
    try:
        values = [float(number) for number in numbers]
    except (TypeError, ValueError) as error:
        raise InputError(f"{name} is {numbers!r}, expected {count} numbers") from error
    if len(values) != count:
        raise InputError(f"{name} has {len(values)} numbers, expected {count}")
    return values


def whole_numbers(name: str, numbers: Numbers, count: int) -> list[int]:
    """A list of whole numbers of that length.

    Raises:
        InputError: another length, or a fraction.
    """
    values = floats(name, numbers, count)
    for value in values:
        if not value.is_integer():
            raise InputError(f"{name} contains {value}, expected whole numbers")
    return [int(value) for value in values]


def state_distances(settings: Union[_library.Settings, _library.VerifyOptions], at_m: Numbers) -> None:
    """Sets the distances at which the error in the image is stated, metres."""
    distances = floats("at_m", at_m, len(at_m))
    settings.at_count = len(distances)
    settings.at_m = (ctypes.c_double * len(distances))(*distances)


def table(name: str, rows: Rows, width: int) -> npt.NDArray[np.float64]:
    """An array with that many columns.

    Raises:
        InputError: another shape, or no numbers.
    """
    try:
        array = np.asarray(rows, dtype=np.float64)
    except (TypeError, ValueError) as error:
        raise InputError(f"{name} contains something other than numbers") from error
    if array.ndim != 2 or array.shape[1] != width:
        raise InputError(f"{name} has the shape {array.shape}, expected one row of {width} for each photograph")
    return array
