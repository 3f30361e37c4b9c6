"""Draws the diagrams of docs/ that show data. Needs matplotlib (package python3-matplotlib).

Usage: draw.py TRUTH FILM PAIRING

TRUTH is truth.json of `trackedcam simulate FOLDER`; views.svg shows its photographs. mounting-error.svg shows
mounting.csv in the folder of this script. FILM is a folder of `trackedcam simulate FILM --recording`, and PAIRING the
pairing.json of it; pairing.svg shows how fast the chart turns in front of the camera, by both clocks.
"""

import csv
import json
import pathlib
import sys

import matplotlib
import matplotlib.pyplot as plt
import numpy

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


def turn_speeds(times, rotations):
    """Degrees per second between neighbouring rotations, 3x3, and the times in between."""
    cosines = (numpy.einsum("nij,nij->n", rotations[1:], rotations[:-1]) - 1) / 2
    angles = numpy.degrees(numpy.arccos(numpy.clip(cosines, -1, 1)))
    return (times[1:] + times[:-1]) / 2, angles / numpy.diff(times)


def rotations_of(poses):
    """3x3 matrices from the rows of a TUM file."""
    x, y, z, w = poses[:, 4:8].T
    return numpy.stack([1 - 2 * (y * y + z * z), 2 * (x * y - z * w), 2 * (x * z + y * w),
                        2 * (x * y + z * w), 1 - 2 * (x * x + z * z), 2 * (y * z - x * w),
                        2 * (x * z - y * w), 2 * (y * z + x * w), 1 - 2 * (x * x + y * y)],
                       axis=-1).reshape(-1, 3, 3)


def draw_pairing(film, pairing):
    """Draws the speeds of rotation of film and trackers, as recorded and by the delay found."""
    frames = numpy.loadtxt(film / "frames/times.csv", delimiter=",", skiprows=1)
    truth = json.loads((film / "truth.json").read_text())
    seen = numpy.array([frame["transformCamChart"] for frame in truth["photographs"]])
    step = 2  # frames, as pairing searches them
    seen_times, seen_speeds = turn_speeds(frames[::step, 1],
                                          seen.reshape(-1, 4, 4)[::step, :3, :3])
    camera, chart = (numpy.loadtxt(film / name) for name in ("camera_poses.txt",
                                                             "chart_poses.txt"))
    window = 8  # poses, against their noise
    times = camera[::window, 0]
    nearest = numpy.abs(chart[:, :1] - times).argmin(axis=0)
    relative = numpy.einsum("nji,njk->nik", rotations_of(camera[::window]),
                            rotations_of(chart[nearest]))
    pose_times, pose_speeds = turn_speeds(times, relative)
    figure, panels = plt.subplots(2, 1, figsize=(8, 4), layout="constrained", sharex=True)
    for axes, delay, title in ((panels[0], 0, "as recorded"),
                               (panels[1], pairing["delaySeconds"], "by the delay that was found")):
        axes.plot(pose_times - delay, pose_speeds, color="#1f5fa8", label="trackers")
        axes.plot(seen_times, seen_speeds, ".", color="#c8321e", markersize=4, label="film")
        axes.set(title=title, xlim=(1, 9), ylim=(0, None), ylabel="turns by, °/s")
        axes.grid(alpha=0.3)
    panels[1].set_xlabel("time of the film, s")
    panels[0].legend(frameon=False, loc="upper right")
    save(figure, "pairing.svg")


draw_mounting_error()
draw_views(json.loads(pathlib.Path(sys.argv[1]).read_text()))
draw_pairing(pathlib.Path(sys.argv[2]), json.loads(pathlib.Path(sys.argv[3]).read_text()))
