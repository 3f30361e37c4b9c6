"""Drawings of a report with matplotlib.

Each function draws into the axes that it is given, or into those of a new figure, and returns them.
"""

from __future__ import annotations

import importlib
import math
from typing import TYPE_CHECKING, Any, Optional

import numpy as np

if TYPE_CHECKING:
    from ._report import CrossCheck, Photograph

# Of all drawings: for what takes part, and for what does not.
_USED, _LEFT_OUT = "tab:blue", "tab:orange"


def _axes(ax: Optional[Any]) -> Any:
    if ax is not None:
        return ax
    try:
        pyplot = importlib.import_module("matplotlib.pyplot")
    except ImportError as error:
        raise ImportError("drawings need matplotlib: install python3-matplotlib, or matplotlib with pip") from error
    return pyplot.subplots(layout="constrained")[1]


def photographs(entries: list[Photograph], ax: Optional[Any]) -> Any:
    """A bar for each photograph: its reprojection error."""
    ax = _axes(ax)
    for label, colour, is_used in [("used", _USED, True), ("left out", _LEFT_OUT, False)]:
        bars = [(place, entry.library_error_pixels) for place, entry in enumerate(entries)
                if entry.library_error_pixels is not None and (entry.state == "used") == is_used]
        if bars:
            ax.bar(*zip(*bars), color=colour, label=label)
    # A pair of $ would be a formula.
    names = [entry.name.replace("\\", "/").rsplit("/", 1)[-1].replace("$", r"\$") for entry in entries]
    ax.set_xticks(range(len(entries)), names, rotation=90, fontsize="x-small")
    ax.set_xlim(-0.6, len(entries) - 0.4)
    ax.set_ylabel("reprojection error (pixels)")
    if ax.containers:
        ax.legend()
    return ax


def views(data: dict[str, Any], ax: Optional[Any]) -> Any:
    """A point for each view of the chart: how far it was tilted and to which side, its distance as colour."""
    ax = _axes(ax)
    seen = [photograph["crossCheck"] for photograph in data["photographs"] if photograph["crossCheck"] is not None]
    places = np.array([_tilt(view) for view in seen if view["tiltDegrees"] is not None]).reshape(-1, 2)
    distances = [view["distanceMetres"] for view in seen if view["tiltDegrees"] is not None]
    drawn = ax.scatter(*places.T, c=distances, label="photographs")
    ax.figure.colorbar(drawn, ax=ax, label="distance (m)")
    suggested = np.array([_tilt(view) for view in data["crossCheck"]["suggestedViews"]]).reshape(-1, 2)
    if len(suggested):
        ax.scatter(*suggested.T, marker="*", s=150, facecolors="none", edgecolors=_LEFT_OUT, label="suggested")
    ax.set_aspect("equal", adjustable="datalim")
    ax.invert_yaxis()  # the camera's y is down
    ax.set_xlabel("tilt of the chart to face the right of the image (degrees)")
    ax.set_ylabel("to face the bottom (degrees)")
    ax.legend()
    return ax


def _tilt(view: dict[str, Any]) -> tuple[float, float]:
    direction = math.radians(view["tiltDirectionDegrees"])
    return view["tiltDegrees"] * math.cos(direction), view["tiltDegrees"] * math.sin(direction)


def uncertainty(check: CrossCheck, ax: Optional[Any]) -> Any:
    """Half-widths of the 95 % intervals of Transform_Cam_Tc: translation, and on a second scale rotation."""
    ax = _axes(ax)
    degrees = ax.twinx()
    ax.bar(range(3), check.t95 * check.standard_error_mm, color=_USED)
    degrees.bar(range(3, 6), check.t95 * check.standard_error_deg, color=_LEFT_OUT)
    ax.set_xticks(range(6), ["x", "y", "z", "about x", "about y", "about z"])
    ax.set_ylabel("translation, ± 95 % (mm)", color=_USED)
    degrees.set_ylabel("rotation, ± 95 % (degrees)", color=_LEFT_OUT)
    return ax


def corners(data: dict[str, Any], ax: Optional[Any]) -> Any:
    """An arrow at each corner: from where it was found to where trackers and solution predict it."""
    ax = _axes(ax)
    seen = [photograph["crossCheck"] for photograph in data["photographs"] if photograph["crossCheck"] is not None]
    pairs = [(found, predicted) for view in seen if view["corners"] and view["predicted"]
             for found, predicted in zip(view["corners"], view["predicted"]) if found and predicted]
    found, predicted = np.array(pairs, dtype=float).reshape(-1, 2, 2).transpose(1, 2, 0)
    off = predicted - found
    width, height = data["imageSize"]
    arrows = ax.quiver(*found, *off, np.hypot(*off), angles="xy", width=0.002)
    ax.figure.colorbar(arrows, ax=ax, label="from found to predicted (pixels)")
    # The centre of the first pixel is (0, 0).
    ax.set_xlim(-0.5, width - 0.5)
    ax.set_ylim(height - 0.5, -0.5)
    ax.set_aspect("equal")
    ax.set_xlabel("x (pixels)")
    ax.set_ylabel("y (pixels)")
    return ax
