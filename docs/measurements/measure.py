"""Measures, on simulated shoots with known truth, how the result depends on the shoot.

Usage: measure.py PROGRAM [SERIES...]   (PROGRAM: the built host program; all series by default)

Each series becomes a CSV file beside this script, whose rows the pages of docs/ show as tables. Every
setting is simulated with five seeds, so that a second run gives the same figures: the middle one of the
five and the worst. A shoot has 40 photographs of 1280 x 720 unless the series says otherwise.
"""

import csv
import json
import math
import pathlib
import re
import statistics
import subprocess
import sys
import tempfile
import tomllib

SEEDS = range(1, 6)
# Of a good optical tracking system, along and about each axis of each tracker.
NOISE = {"tracker-noise-mm": 0.3, "tracker-noise-degrees": 0.05}

program = pathlib.Path(sys.argv[1]).resolve()
shoot = pathlib.Path(tempfile.mkdtemp()) / "shoot"


def run(*arguments, **options):
    line = [program, *arguments]
    line += [f"--{name.replace('_', '-')}={value}" for name, value in options.items()]
    status = subprocess.run(line, capture_output=True, text=True)
    # 1: the calibration failed, which is a result here.
    if status.returncode not in {0, 1}:
        sys.exit(status.stderr)


def simulate(seed, **options):
    run("simulate", shoot, **{"seed": seed, "photographs": 40, "image": "1280x720", **options})


def read(name):
    return json.loads((shoot / name).read_text())


def config():
    return tomllib.loads((shoot / "shoot.toml").read_text())["calibrate"]


def calibrate(rows=None, **options):
    """Calibrates the simulated shoot, or some rows of it, and returns how far off the result is."""
    if rows is not None:
        header, *lines = (shoot / "tracker_data.csv").read_text().splitlines()
        options["data"] = shoot / "some_rows.csv"
        options["data"].write_text("\n".join([header, *(lines[i] for i in rows)]) + "\n")
    run("calibrate", config=shoot / "shoot.toml", **options)
    result, truth = read("result.json"), read("truth.json")
    found, true = result["transformCamTc"], truth["transformCamTc"]
    if not found or None in found:
        return {"code": result["code"]}
    turn = math.dist(*([m[i] for i in range(12) if i % 4 != 3] for m in (found, true)))
    return {
        "code": result["code"],
        "mm": 1000 * math.dist(found[3:12:4], true[3:12:4]),
        "deg": math.degrees(2 * math.asin(min(1, turn / math.sqrt(8)))),
        "focal": 100 * (result["normFocal"][0] / truth["normFocal"][0] - 1),
        "lens": result["lensErrorPixels"],
        "reprojection": result["reprojectionErrorPixels"],
        "spread": 1000 * result["translationSpreadMetres"],
        "used": len(result["used"]),
    }


def summary(runs):
    """The figures of one setting: the middle one of the seeds and the worst."""
    codes = sorted({figures["code"] for figures in runs})
    solved = [figures for figures in runs if "mm" in figures]
    if len(solved) < len(runs):
        solved = []

    def figure(name, digits, choose=statistics.median):
        return f"{choose(f[name] for f in solved):.{digits}f}" if solved else "–"

    return {
        "Off (mm)": figure("mm", 2), "worst (mm)": figure("mm", 2, max),
        "Off (deg)": figure("deg", 3), "worst (deg)": figure("deg", 3, max),
        "Reprojection (px)": figure("reprojection", 2), "T_STD (mm)": figure("spread", 2),
        "Used": figure("used", 0), "Code": " or ".join(map(str, codes)),
    }


def mounting():
    """The stated mounting of the chart's tracker is not the true one."""
    for mm, degrees in [(mm, 0) for mm in (0, 2, 5, 10, 20)] + [(0, d) for d in (0.2, 0.5, 1, 2, 5)]:
        runs = []
        for seed in SEEDS:
            simulate(seed, mounting_error_mm=mm, mounting_error_degrees=degrees)
            runs.append(calibrate())
        yield {"Mounting off by": f"{mm} mm" if mm or not degrees else f"{degrees}°"} | summary(runs)


def again():
    """A mounting that is off by 5 mm and 1 degree is replaced by the one that the log shows, repeatedly."""
    passes = {1: [], 2: [], 3: [], 5: [], 10: []}
    for seed in SEEDS:
        simulate(seed, mounting_error_mm=5, mounting_error_degrees=1, **NOISE)
        options = {}
        for number in range(1, max(passes) + 1):
            figures = calibrate(**options)
            if number in passes:
                passes[number].append(figures)
            options = logged_mounting()
    for number, runs in passes.items():
        yield {"Run": number} | summary(runs)


def logged_mounting():
    """The options for the mounting that the last log shows."""
    log = max((shoot / "log").glob("log_*.txt")).read_text()
    rows = log.split("Mean_Transform_Chart_Tr : ")[-1].splitlines()[1:4]
    m = [[float(n) for n in re.findall(r"-?\d+\.\d+", row.split("\t")[1])] for row in rows]
    # Inverse of a rigid transform; of the rotation Rx * Ry * Rz.
    r = [[m[j][i] for j in range(3)] for i in range(3)]
    t = [-sum(r[i][k] * m[k][3] for k in range(3)) for i in range(3)]
    angles = [math.atan2(-r[1][2], r[2][2]), math.asin(r[0][2]), math.atan2(-r[0][1], r[0][0])]
    return {"chart_rotation": ",".join(f"{math.degrees(a):.6f}" for a in angles),
            "chart_translation": ",".join(f"{x:.6f}" for x in t)}


def photographs():
    """Fewer or more photographs."""
    runs = {count: [] for count in (12, 20, 30, 40, 60, 80)}
    for seed in SEEDS:
        simulate(seed, photographs=80, **NOISE)
        for count in runs:
            runs[count].append(calibrate(range(count)))
    for count, figures in runs.items():
        yield {"Photographs": count} | summary(figures)


def noise():
    """The trackers are noisy, along or about each axis."""
    for mm, degrees in [(mm, 0) for mm in (0.1, 0.3, 1, 3)] + [(0, d) for d in (0.05, 0.1, 0.2, 0.5)]:
        runs = []
        for seed in SEEDS:
            simulate(seed, tracker_noise_mm=mm, tracker_noise_degrees=degrees)
            runs.append(calibrate())
        yield {"Noise": f"{mm} mm" if mm else f"{degrees}°"} | summary(runs)


def scale():
    """The stated square is not the printed one."""
    runs = {percent: [] for percent in (-2, -1, -0.5, 0, 0.5, 1, 2)}
    for seed in SEEDS:
        simulate(seed, **NOISE)
        for percent in runs:
            runs[percent].append(calibrate(square=0.03 * (1 + percent / 100)))
    for percent, figures in runs.items():
        yield {"Square off by": f"{percent} %"} | summary(figures)


def blur():
    """The photographs are blurred: the spread of a bell curve."""
    for pixels in (0.5, 1, 2, 4, 8, 12):
        runs = []
        for seed in SEEDS:
            simulate(seed, blur=pixels)
            runs.append(calibrate())
        yield {"Blur (px)": pixels} | summary(runs)


def slips():
    """A tracker had slipped in some of the photographs."""
    for mm, degrees in ((40, 3), (5, 0.5)):
        for outliers in (0, 2, 4, 8, 12):
            runs = []
            kept = 0
            for seed in SEEDS:
                simulate(seed, outliers=outliers, slip_mm=mm, slip_degrees=degrees, **NOISE)
                runs.append(calibrate())
                kept += len(set(read("truth.json")["outliers"]).intersection(read("result.json")["used"]))
            yield ({"Slip": f"{mm} mm and {degrees}°", "Slipped of 40": outliers} | summary(runs)
                   | {"Kept": f"{kept} of {outliers * len(SEEDS)}"})


def views():
    """All photographs see the chart in a similar way: 20 out of 400."""
    kinds = {
        "tilted to all sides": lambda v: True,
        "from the front (tilt below 17°)": lambda v: v["tilt"] < 17,
        "strongly tilted (above 32°)": lambda v: v["tilt"] > 32,
        "tilted to one side": lambda v: abs((v["side"] + 180) % 360 - 180) < 35,
        "camera upright (within 6°)": lambda v: abs(v["roll"]) < 6,
        "chart in the middle": lambda v: v["off_centre"] < 0.08,
    }
    for mm, degrees in ((0, 0), (5, 1)):
        runs = {kind: [] for kind in kinds}
        for seed in SEEDS:
            simulate(seed, photographs=400, mounting_error_mm=mm, mounting_error_degrees=degrees, **NOISE)
            truth = read("truth.json")
            seen = [view(p["transformCamChart"], truth) for p in truth["photographs"]]
            for kind, fits in kinds.items():
                rows = [i for i, v in enumerate(seen) if fits(v)][:20]
                assert len(rows) == 20, kind
                runs[kind].append(calibrate(rows))
        for kind, figures in runs.items():
            focal = max((abs(f["focal"]) for f in figures if "focal" in f), default=math.nan)
            yield ({"Views": kind, "Mounting off by": f"{mm} mm and {degrees}°" if mm else "0"}
                   | summary(figures) | {"worst focal length (%)": f"{focal:.2f}"})


def view(pose, truth):
    """The chart's tilt and the side it is tilted to, its turn in the picture and its place there."""
    centre = [pose[4 * r] * 0.12 + pose[4 * r + 1] * 0.075 + pose[4 * r + 3] for r in range(3)]
    place = [truth["normFocal"][i] * centre[i] / centre[2] for i in range(2)]
    return {
        "tilt": math.degrees(math.acos(pose[10])),
        "side": math.degrees(math.atan2(pose[6], pose[2])),
        "roll": math.degrees(math.atan2(pose[4], pose[0])),
        "off_centre": math.hypot(*place),
    }


def mistakes():
    """A figure is wrong, or rows are mixed up."""
    simulate(1)
    rotation, translation = ([float(n) for n in config()[f"chart-{part}"].split(",")]
                             for part in ("rotation", "translation"))
    listed = lambda numbers: ",".join(map(str, numbers))
    cases = {
        "none": {},
        "quaternions inverted": {"invert_tracker_quaternions": "true"},
        "square ten times too large": {"square": 0.3},
        "board turned: 6x9 for 9x6": {"board": "6x9"},
        "board too small: 8x5 for 9x6": {"board": "8x5"},
        "board counted in squares: 10x7 for 9x6": {"board": "10x7"},
        "mounting left at zero": {"chart_rotation": "0,0,0", "chart_translation": "0,0,0"},
        "mounting's sign turned": {"chart_rotation": listed(-a for a in rotation)},
        "mounting turned by 90°": {"chart_rotation": listed([rotation[0] + 90, *rotation[1:]])},
        "mounting in millimetres": {"chart_translation": listed(1000 * t for t in translation)},
    }
    for case, options in cases.items():
        yield {"Mistake": case} | summary([calibrate(**options)])
    yield {"Mistake": "one photograph 20 times"} | summary([calibrate([0] * 20)])
    swap_trackers()
    yield {"Mistake": "the trackers' columns swapped"} | summary([calibrate()])
    simulate(1)
    shift_poses()
    yield {"Mistake": "each photograph with the poses of the one before"} | summary([calibrate()])


def change_rows(change):
    data = shoot / "tracker_data.csv"
    header, *lines = data.read_text().splitlines()
    rows = change([line.split(",") for line in lines])
    data.write_text("\n".join([header, *(",".join(row) for row in rows)]) + "\n")


def swap_trackers():
    change_rows(lambda rows: [row[:2] + row[9:] + row[2:9] for row in rows])


def shift_poses():
    change_rows(lambda rows: [row[:2] + rows[i - 1][2:] for i, row in enumerate(rows)])


SERIES = [mounting, again, photographs, noise, scale, blur, slips, views, mistakes]
for series in SERIES:
    if series.__name__ not in (sys.argv[2:] or [s.__name__ for s in SERIES]):
        continue
    rows = list(series())
    path = pathlib.Path(__file__).parent / f"{series.__name__}.csv"
    with open(path, "w", encoding="utf-8", newline="") as file:
        writer = csv.DictWriter(file, rows[0], lineterminator="\n")
        writer.writeheader()
        writer.writerows(rows)
    print(path.name, flush=True)
