"""Measures on simulated shoots with known truth how the result depends on the shoot.

Usage: measure.py PROGRAM [SERIES...]

PROGRAM is the built host program. Without SERIES, all series are measured.

Each series becomes a CSV file in the folder of this script; the pages of docs/ show its rows as tables. Every
setting is simulated with the same five seeds, so a second run gives the same values: the median of the five
and the worst. A shoot has 40 photographs of 1280 x 720 unless the series says otherwise.

"Off" is the error of the library's result after a single run, "Cross-check" the error of the cross-check's transform
in the same run. "Findings" lists errors and warnings, with the number of shoots if not all five have them.
"""

import collections
import csv
import json
import math
import pathlib
import shutil
import statistics
import subprocess
import sys
import tempfile
import tomllib

SEEDS = range(1, 6)
# The noise of a good optical tracking system, along and about each axis of each tracker.
NOISE = {"tracker-noise-mm": 0.3, "tracker-noise-degrees": 0.05}

program = pathlib.Path(sys.argv[1]).resolve()
shoot = pathlib.Path(tempfile.mkdtemp()) / "shoot"


def run(*arguments, **options):
    line = [program, *arguments]
    line += [f"--{name.replace('_', '-')}={value}" for name, value in options.items()]
    status = subprocess.run(line, capture_output=True, text=True)
    # 1 (the calibration failed) and 3 (it is certainly wrong) are results here. So is 2 (refused), for the
    # series of mistakes.
    if status.returncode not in {0, 1, 2, 3} or (status.returncode == 2 and arguments[0] != "calibrate"):
        sys.exit(status.stderr)
    return status


def simulate(seed, **options):
    run("simulate", shoot, **{"seed": seed, "photographs": 40, "image": "1280x720", **options})


def read(name):
    return json.loads((shoot / name).read_text())


def config():
    return tomllib.loads((shoot / "shoot.toml").read_text())["calibrate"]


def calibrate(rows=None, **options):
    """Calibrates the simulated shoot, or some rows of it, and returns the errors of the result."""
    if rows is not None:
        header, *lines = (shoot / "tracker_data.csv").read_text().splitlines()
        options["data"] = shoot / "some_rows.csv"
        options["data"].write_text("\n".join([header, *(lines[i] for i in rows)]) + "\n")
    shutil.rmtree(shoot / "log", ignore_errors=True)
    status = run("calibrate", config=shoot / "shoot.toml", no_report="true", **options)
    if status.returncode == 2:
        return {"code": "refused"}
    result, truth = read("result.json"), read("truth.json")
    values = {"code": result["code"], "findings": findings(result)}
    check = result["crossCheck"]
    if check and known(check["transformCamTc"]):
        values["check mm"], values["check deg"] = off(check["transformCamTc"], truth)
    if not known(result["transformCamTc"]):
        return values
    values["mm"], values["deg"] = off(result["transformCamTc"], truth)
    return values | {
        "focal": 100 * (result["normFocal"][0] / truth["normFocal"][0] - 1),
        "lens": result["lensErrorPixels"],
        "reprojection": result["reprojectionErrorPixels"],
        "spread": 1000 * result["translationSpreadMetres"],
        "used": len(used(result)),
    }


def known(transform):
    return transform and None not in transform


def off(found, truth):
    """The error of a transform: millimetres and degrees."""
    true = truth["transformCamTc"]
    turn = math.dist(*([m[i] for i in range(12) if i % 4 != 3] for m in (found, true)))
    return (1000 * math.dist(found[3:12:4], true[3:12:4]),
            math.degrees(2 * math.asin(min(1, turn / math.sqrt(8)))))


def used(result):
    """The names of the photographs on which the result rests."""
    return [photograph["name"] for photograph in result["photographs"] if photograph["state"] == "used"]


def findings(result):
    """The ids of errors and warnings, each once, the worst first."""
    return list(dict.fromkeys(f["id"] for f in result["findings"] if f["severity"] != "note"))


def summary(runs):
    """The row of one setting: the median of the seeds and the worst."""
    codes = sorted({values["code"] for values in runs}, key=str)
    counts = collections.Counter(name for values in runs for name in values.get("findings", []))
    found = [f"`{name}`" + (f" in {count}" if count < len(runs) else "")
            for name, count in counts.most_common()]

    def value(name, digits, choose=statistics.median):
        if not all(name in values for values in runs):
            return "–"
        return f"{choose(values[name] for values in runs):.{digits}f}"

    return {
        "Off (mm)": value("mm", 2), "worst (mm)": value("mm", 2, max),
        "Off (deg)": value("deg", 3), "worst (deg)": value("deg", 3, max),
        "Reprojection (px)": value("reprojection", 2), "T_STD (mm)": value("spread", 2),
        "Used": value("used", 0), "Code": " or ".join(map(str, codes)),
        "Cross-check (mm)": value("check mm", 2), "its worst (mm)": value("check mm", 2, max),
        "Cross-check (deg)": value("check deg", 3), "its worst (deg)": value("check deg", 3, max),
        "Findings": ", ".join(found) or "–",
    }


def mounting():
    """The stated mounting of the chart's tracker is wrong."""
    for mm, degrees in [(mm, 0) for mm in (0, 2, 5, 10, 20)] + [(0, d) for d in (0.2, 0.5, 1, 2, 5)]:
        runs = []
        for seed in SEEDS:
            simulate(seed, mounting_error_mm=mm, mounting_error_degrees=degrees)
            runs.append(calibrate())
        yield {"Mounting off by": f"{mm} mm" if mm or not degrees else f"{degrees}°"} | summary(runs)


def again():
    """Each run uses the refined mounting in the log of the run before. 20 small photographs."""
    shown = (1, 2, 5, 10, 20)
    runs = {number: [] for number in shown}
    moved = {number: [] for number in shown}
    for seed in SEEDS:
        simulate(seed, photographs=20, image="640x360", mounting_error_mm=20, mounting_error_degrees=1,
                 **NOISE)
        stated = {f"chart_{part}": config()[f"chart-{part}"] for part in ("rotation", "translation")}
        for number in range(1, max(shown) + 1):
            values = calibrate(**stated)
            before = [float(n) for n in stated["chart_translation"].split(",")]
            stated, after = refined_mounting()
            if number in shown:
                runs[number].append(values)
                moved[number].append(1000 * math.dist(before, after))
    for number, values in runs.items():
        yield ({"Run": number} | summary(values)
               | {"Refined mounting moved by (mm)": f"{statistics.median(moved[number]):.2f}"})


def refined_mounting():
    """The refined mounting in the log of the last run, as options, and its translation."""
    lines = pathlib.Path(read("result.json")["log"]).read_text().splitlines()
    at = next(i for i, line in enumerate(lines) if "\tMean_Transform_Chart_Tr : " in line)
    m = [[float(n) for n in line.split("\t")[1].strip(" [],").split(",")] for line in lines[at + 1:at + 5]]
    translation = [-sum(m[k][i] * m[k][3] for k in range(3)) for i in range(3)]
    # Rx * Ry * Rz of the inverse rotation, which is the transpose.
    angles = (math.atan2(-m[2][1], m[2][2]), math.asin(m[2][0]), math.atan2(-m[1][0], m[0][0]))
    return {"chart_rotation": ",".join(f"{math.degrees(a):.6f}" for a in angles),
            "chart_translation": ",".join(f"{t:.7f}" for t in translation)}, translation


def photographs():
    """The number of photographs."""
    runs = {count: [] for count in (12, 20, 30, 40, 60, 80)}
    for seed in SEEDS:
        simulate(seed, photographs=80, **NOISE)
        for count in runs:
            runs[count].append(calibrate(range(count)))
    for count, values in runs.items():
        yield {"Photographs": count} | summary(values)


def noise():
    """The trackers are noisy along or about each axis."""
    for mm, degrees in [(mm, 0) for mm in (0.1, 0.3, 1, 3)] + [(0, d) for d in (0.05, 0.1, 0.2, 0.5)]:
        runs = []
        for seed in SEEDS:
            simulate(seed, tracker_noise_mm=mm, tracker_noise_degrees=degrees)
            runs.append(calibrate())
        yield {"Noise": f"{mm} mm" if mm else f"{degrees}°"} | summary(runs)


def scale():
    """The stated size of the squares is wrong."""
    runs = {percent: [] for percent in (-2, -1, -0.5, 0, 0.5, 1, 2)}
    for seed in SEEDS:
        simulate(seed, **NOISE)
        for percent in runs:
            runs[percent].append(calibrate(square=0.03 * (1 + percent / 100)))
    for percent, values in runs.items():
        yield {"Square off by": f"{percent} %"} | summary(values)


def blur():
    """The photographs are blurred; the value is the standard deviation of a Gaussian."""
    for pixels in (0.5, 1, 2, 4, 8, 12):
        runs = []
        for seed in SEEDS:
            simulate(seed, blur=pixels)
            runs.append(calibrate())
        yield {"Blur (px)": pixels} | summary(runs)


def slips():
    """A tracker has slipped in some of the photographs."""
    for mm, degrees in ((40, 3), (5, 0.5)):
        for outliers in (0, 2, 4, 8, 12):
            runs = []
            kept = 0
            for seed in SEEDS:
                simulate(seed, outliers=outliers, slip_mm=mm, slip_degrees=degrees, **NOISE)
                runs.append(calibrate())
                kept += len(set(read("truth.json")["outliers"]).intersection(used(read("result.json"))))
            yield ({"Slip": f"{mm} mm and {degrees}°", "Slipped of 40": outliers} | summary(runs)
                   | {"Kept": f"{kept} of {outliers * len(SEEDS)}"})


def views():
    """All photographs show the chart in a similar view: 20 selected from 400."""
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
        for kind, values in runs.items():
            focal = max((abs(f["focal"]) for f in values if "focal" in f), default=math.nan)
            yield ({"Views": kind, "Mounting off by": f"{mm} mm and {degrees}°" if mm else "0"}
                   | summary(values) | {"worst focal length (%)": f"{focal:.2f}"})


def view(pose, truth):
    """The chart's tilt, the direction of the tilt, its roll, and its distance from the image centre."""
    centre = [pose[4 * r] * 0.12 + pose[4 * r + 1] * 0.075 + pose[4 * r + 3] for r in range(3)]
    place = [truth["normFocal"][i] * centre[i] / centre[2] for i in range(2)]
    return {
        "tilt": math.degrees(math.acos(pose[10])),
        "side": math.degrees(math.atan2(pose[6], pose[2])),
        "roll": math.degrees(math.atan2(pose[4], pose[0])),
        "off_centre": math.hypot(*place),
    }


def mistakes():
    """An input value is wrong, or rows are mixed up."""
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
