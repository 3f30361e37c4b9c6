"""Draws the diagrams of docs/ that show data. Needs matplotlib (package python3-matplotlib).

Usage: draw.py TRUTH

TRUTH is truth.json of `trackedcam simulate FOLDER`; views.svg shows its photographs. mounting-error.svg shows
mounting.csv in the folder of this script.
"""

import csv
import json
import pathlib
import sys

import matplotlib
import matplotlib.pyplot as plt

here = pathlib.Path(__file__).parent
images = here.parent / "images"
# The same data give the same file. Letters are written as text.
matplotlib.rcParams.update({"svg.hashsalt": "trackedcam", "svg.fonttype": "none", "font.size": 10})


def save(figure, name):
    figure.savefig(images / name, metadata={"Date": None, "Creator": None})


def draw_mounting_error():
    """Draws the effect of a wrong nominal mounting on the result and on the cross-check."""
    with open(here / "mounting.csv", encoding="utf-8", newline="") as file:
        rows = list(csv.DictReader(file))
    figure, (shift, turn) = plt.subplots(1, 2, figsize=(8, 3.2), layout="constrained")
    for axes, unit, off in ((shift, " mm", "mm"), (turn, "°", "deg")):
        chosen = [row for row in rows if row["Mounting off by"].endswith(unit) or
                  row["Mounting off by"] == "0 mm"]
        errors = [float(row["Mounting off by"].removesuffix(" mm").removesuffix("°"))
                  for row in chosen]
        axes.plot(errors, errors, color="#999", linestyle="--", label="as much as the mounting")
        for column, colour, label in ((f"worst ({off})", "#c8321e", "worst of five shoots"),
                                      (f"Off ({off})", "#1f5fa8", "middle of five shoots"),
                                      (f"its worst ({off})", "#2e7d32", "cross-check, worst of five")):
            axes.plot(errors, [float(row[column]) for row in chosen], marker="o", color=colour,
                      label=label)
        axes.set_xlabel(f"nominal mounting off by ({unit.strip()})")
        axes.set_ylabel(f"Transform_Cam_Tc off by ({unit.strip()})", labelpad=8)
        axes.grid(alpha=0.3)
    shift.legend(frameon=False)
    save(figure, "mounting-error.svg")


def draw_views(truth):
    """Draws paper, inner corners and first corner in each photograph of a simulated shoot."""
    width, height = truth["imageSize"]
    figure, grid = plt.subplots(4, 5, figsize=(8, 3.8), layout="constrained")
    for axes, photograph in zip(grid.flat, truth["photographs"]):
        paper = rectangle(photograph, truth["lensPixels"], -0.06, -0.06, 0.3, 0.21)
        corners = rectangle(photograph, truth["lensPixels"], 0, 0, 0.24, 0.15)
        axes.fill(*zip(*paper), facecolor="#fff", edgecolor="#333", linewidth=0.7)
        axes.fill(*zip(*corners), facecolor="#9db8d4")
        axes.plot(*corners[0], "o", color="#c8321e", markersize=3)
        axes.set_facecolor("#eee")
        axes.set(xlim=(0, width), ylim=(height, 0), aspect="equal", xticks=[], yticks=[])
    save(figure, "views.svg")


def rectangle(photograph, lens, left, top, right, bottom):
    """The corners of a rectangle in frame Chart (metres), projected to pixels without distortion."""
    m = photograph["transformCamChart"]
    pixels = []
    for x, y in ((left, top), (right, top), (right, bottom), (left, bottom)):
        X, Y, Z = (m[4 * r] * x + m[4 * r + 1] * y + m[4 * r + 3] for r in range(3))
        pixels.append((lens["fx"] * X / Z + lens["cx"], lens["fy"] * Y / Z + lens["cy"]))
    return pixels


draw_mounting_error()
draw_views(json.loads(pathlib.Path(sys.argv[1]).read_text()))
