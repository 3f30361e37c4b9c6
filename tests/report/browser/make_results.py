"""Writes result files of simulated shoots, as pages are made from them, and small images for them.

Usage: make_results.py FOLDER

For each shoot, NAME.json, and NAME.thumbnails/ with a PNG for each photograph. The geometry is that of
docs/conventions.md, so that scene, corners and residuals fit together; uncertainties and tests are
plausible values, not solved ones. Every run writes the same files.
"""

import json
import math
import pathlib
import random
import struct
import sys
import zlib

WIDTH, HEIGHT, FOCAL = 1920, 1080, 2592.0
COLUMNS, ROWS, SQUARE = 9, 6, 0.03
SENSOR = [36.0, 20.25]
FOLDER = "/home/set/stage-2/"
CONTRADICTS = "fits the trackers of photos/img_001.jpg"
REASONS = {"boardNotFound": "board not found", "notLoaded": "missing or not an image"}
ANGLES, TRANSLATION = [12.0, -8.0, 5.0], [0.1, -0.05, 0.02]
CORNERS = [(c * SQUARE, r * SQUARE, 0.0) for r in range(ROWS) for c in range(COLUMNS)]


# Transforms: a rotation, row by row in three lists, and a translation.

def product(a, b):
    rotation = [[sum(a[0][i][k] * b[0][k][j] for k in range(3)) for j in range(3)] for i in range(3)]
    return rotation, apply(a, b[1])


def apply(a, p):
    return [sum(a[0][i][k] * p[k] for k in range(3)) + a[1][i] for i in range(3)]


def inverse(a):
    rotation = [[a[0][j][i] for j in range(3)] for i in range(3)]
    return rotation, [-sum(rotation[i][k] * a[1][k] for k in range(3)) for i in range(3)]


def about(axis, degrees):
    c, s = math.cos(math.radians(degrees)), math.sin(math.radians(degrees))
    i, j = (axis + 1) % 3, (axis + 2) % 3
    rotation = [[float(r == k) for k in range(3)] for r in range(3)]
    rotation[i][i], rotation[i][j], rotation[j][i], rotation[j][j] = c, -s, s, c
    return rotation, [0.0, 0.0, 0.0]


def moved(x, y, z):
    return about(0, 0)[0], [x, y, z]


def mounting(angles, translation):
    rotation = product(product(about(0, angles[0]), about(1, angles[1])), about(2, angles[2]))
    return rotation[0], list(translation)


def small(angles, translation):
    """Rotations in degrees about the axes, and a translation."""
    return product(moved(*translation), mounting(angles, [0, 0, 0]))


def flat(a):
    return [n for i in range(3) for n in [*a[0][i], a[1][i]]] + [0.0, 0.0, 0.0, 1.0]


def angle_between(a, b):
    trace = sum(a[0][i][k] * b[0][i][k] for i in range(3) for k in range(3))
    return math.degrees(math.acos(max(-1.0, min(1.0, (trace - 1) / 2))))


def rotation_vector(a):
    """Axis times angle, degrees."""
    double_sine = [a[0][2][1] - a[0][1][2], a[0][0][2] - a[0][2][0], a[0][1][0] - a[0][0][1]]
    sine, cosine = math.hypot(*double_sine) / 2, (a[0][0][0] + a[0][1][1] + a[0][2][2] - 1) / 2
    scale = math.degrees(math.atan2(sine, cosine)) / (2 * sine) if sine else 0.0
    return [scale * n for n in double_sine]


def comparison(other, found, rotation, errors, t95):
    """`other` against `found`, with `rotation` from one to the other; as in the result file."""
    axes = lambda i, a, b, difference, error: {"axis": "xyz"[i], "other": a, "found": b, "difference": difference,
                                               "half": t95 * error}
    mm = [[1000 * n for n in transform[1]] for transform in (other, found)]
    return {"translation": [axes(i, mm[0][i], mm[1][i], mm[0][i] - mm[1][i], errors["translationMm"][i]) for i in range(3)],
            "rotation": [axes(i, None, None, rotation_vector(rotation)[i], errors["rotationDegrees"][i]) for i in range(3)],
            "isCompared": True}


def distance_between(a, b):
    return 1000 * math.dist(a[1], b[1])


def project(pose, point):
    x, y, z = apply(pose, point)
    x, y = x / z, y / z
    scale = 1 - 0.08 * (x * x + y * y)
    return [FOCAL * scale * x + (WIDTH - 1) / 2, FOCAL * scale * y + (HEIGHT - 1) / 2]


# A shoot.

def view(rng, index):
    """Transform_Cam_Chart of a photograph, with the angles that it was made from."""
    tilt = rng.uniform(5, 42)
    direction = (index * 137.5 + rng.uniform(-20, 20)) % 360
    roll = rng.gauss(0, 14)
    distance = rng.uniform(0.55, 0.95)
    centre = moved(-(COLUMNS - 1) * SQUARE / 2, -(ROWS - 1) * SQUARE / 2, 0)
    for _ in range(200):
        u, v = rng.uniform(0.15, 0.85) * WIDTH, rng.uniform(0.2, 0.8) * HEIGHT
        place = moved((u - WIDTH / 2) / FOCAL * distance, (v - HEIGHT / 2) / FOCAL * distance, distance)
        tilted = product(product(about(2, direction), about(0, tilt)), about(2, -direction + roll))
        pose = product(product(place, tilted), centre)
        seen = [project(pose, c) for c in CORNERS]
        if all(25 < x < WIDTH - 25 and 25 < y < HEIGHT - 25 for x, y in seen):
            break
        distance = min(1.3, distance * 1.02)
    return pose, dict(tiltDegrees=tilt, tiltDirectionDegrees=direction, rollDegrees=roll,
                      distanceMetres=distance)


def result(seed, count, noise_mm, noise_deg, stated=None, outliers=(), lost=(), name="img_{:03}.jpg", left_out=()):
    rng = random.Random(seed)
    gauss3 = lambda spread: [rng.gauss(0, spread) for _ in range(3)]
    truth_x = small([1.5, -2.0, 88.0], [0.052, -0.081, -0.037])
    truth_y = mounting(ANGLES, TRANSLATION)
    error_mm = 2.2 * noise_mm / math.sqrt(count) + 0.002
    error_deg = 1.6 * noise_deg / math.sqrt(count) + 0.0005
    found_x = product(small(gauss3(error_deg / 2), [n / 1000 for n in gauss3(error_mm / 2)]), truth_x)
    found_y = product(truth_y, small(gauss3(error_deg / 2), [n / 1000 for n in gauss3(error_mm / 2)]))
    stated_angles, stated_translation = stated or (ANGLES, TRANSLATION)
    stated_y = mounting(stated_angles, stated_translation)
    # Most of what the stated mounting is off by goes into the result.
    library_x = product(small(gauss3(error_deg / 2), [n / 1000 for n in gauss3(error_mm / 2)]), truth_x)
    if stated:
        library_x = product(small([0.8 * n for n in (0.55, -0.5, 0.4)], [0.0118, -0.0109, 0.0072]), truth_x)

    names = ["photos/" + name.format(index) for index in range(count)]
    photographs = []
    for index, path in enumerate(names):
        photographs.append({
            "row": index + 2, "name": path, "path": FOLDER + path, "state": "used", "reason": None,
            "libraryErrorPixels": None, "reprojectedImage": None, "crossCheck": None})
        pose, angles = view(rng, index)
        if index in lost or index in left_out:
            photographs[-1]["state"] = "leftOutByCrossCheck" if index in left_out else lost[index]
            photographs[-1]["reason"] = CONTRADICTS if index in left_out else REASONS[lost[index]]
            continue
        tracker = product(product(inverse(truth_x), pose), inverse(truth_y))
        tracker = product(tracker, small(gauss3(1.4 * noise_deg), [n / 1000 for n in gauss3(1.4 * noise_mm)]))
        if index in outliers:
            slip = gauss3(1)
            tracker = product(tracker, small([2 * n for n in gauss3(1)], [0.03 * n for n in slip]))
        predicted_pose = product(product(found_x, tracker), found_y)
        corners = [[n + rng.gauss(0, 0.06) for n in project(pose, c)] for c in CORNERS]
        predicted = [project(predicted_pose, c) for c in CORNERS]
        by_result = [project(product(product(library_x, tracker), stated_y), c) for c in CORNERS]
        mean_error = lambda to: sum(math.dist(a, b) for a, b in zip(corners, to)) / len(corners)
        pixels = mean_error(predicted)
        used = index not in outliers
        photographs[-1]["crossCheck"] = {
            "used": used, "mm": distance_between(pose, predicted_pose),
            "degrees": angle_between(pose, predicted_pose), "predictedPixels": pixels,
            "resultPixels": mean_error(by_result), "byResult": by_result,
            "transformCamChart": flat(pose), "transformTcTr": flat(tracker), "corners": corners,
            "predicted": predicted, **angles}
        photographs[-1]["libraryErrorPixels"] = 1.02 * pixels
        if not used:
            photographs[-1]["reason"] = CONTRADICTS
        if not used or (noise_mm and rng.random() < 0.35):
            photographs[-1]["state"] = "leftOutByFilter"
        else:
            photographs[-1]["reprojectedImage"] = FOLDER + "logs/run/Reproject_" + path
    checks = [p["crossCheck"] for p in photographs if p["crossCheck"]]
    kept = [c for c in checks if c["used"]]
    off_mm, off_deg = distance_between(library_x, found_x), angle_between(library_x, found_x)
    mount_mm, mount_deg = distance_between(stated_y, found_y), angle_between(stated_y, found_y)

    def on_screen(distance):
        transform = FOCAL * math.hypot(2 * error_mm / 1000 / distance, math.radians(2 * error_deg))
        lens = 0.05 + 0.1 / (1 + distance)
        apart = FOCAL * (off_mm / 1000 / distance + math.radians(off_deg))
        middle = math.hypot(transform, lens)
        place = lambda pixels: {"pixels": pixels, "mm": 1000 * distance * pixels / FOCAL}
        cells = [middle * (1 + 0.5 * math.hypot((c - 7.5) / 8, (r - 4) / 4.5) ** 2)
                 for r in range(9) for c in range(16)]
        return {"distanceMetres": distance, "middle": place(middle),
                "corner": {**place(2 * middle), "part": "upperLeft"},
                "cellPixels": cells, "libraryApart": apart}

    diagonal = lambda a, b: [[(a if i < 3 else b) ** 2 * (i == j) for j in range(6)] for i in range(6)]
    covariance = diagonal(math.radians(error_deg), error_mm / 1000)
    certain = 1e-12 if stated else 0.42
    said = "certain" if stated else "may be chance (p = 0.42)"
    log = FOLDER + "logs/run/log_2026-11-21-14.05.09.txt"
    t95 = 1.98
    errors_x = {"translationMm": [error_mm, 1.1 * error_mm, 0.8 * error_mm],
                "rotationDegrees": [error_deg, 0.9 * error_deg, 1.2 * error_deg]}
    errors_y = {"translationMm": [1.2 * error_mm, error_mm, 1.4 * error_mm],
                "rotationDegrees": [error_deg, 1.1 * error_deg, 0.8 * error_deg]}
    return {
        "code": 0, "message": "No error", "imageSize": [WIDTH, HEIGHT],
        "normFocal": [FOCAL / WIDTH, FOCAL / HEIGHT],
        "normCenter": [(WIDTH - 1) / 2 / WIDTH, (HEIGHT - 1) / 2 / HEIGHT],
        "distortion": [-0.08, 0.0012, 0, 0, 0], "transformCamTc": flat(library_x),
        "fieldOfView": [2 * math.degrees(math.atan(WIDTH / 2 / FOCAL)),
                        2 * math.degrees(math.atan(HEIGHT / 2 / FOCAL))],
        "focalLengthMm": [FOCAL / WIDTH * SENSOR[0]], "lensErrorPixels": 0.0714,
        "reprojectionErrorPixels": sum(p["predictedPixels"] for p in kept) / len(kept),
        "translationSpreadMetres": noise_mm * 1.3 / 1000 + 1e-5,
        "limits": {"lensErrorPixels": {"doubt": None, "failure": 1.5},
                   "reprojectionErrorPixels": {"doubt": 12.0, "failure": 18.0},
                   "translationSpreadMetres": {"doubt": 0.01, "failure": 0.015},
                   "photographAngleDegrees": 0.5},
        "photographs": photographs, "exports": exports(library_x), "log": log,
        "versions": {"library": "1.2.3", "program": "1.2.3"},
        "verdict": {"level": "good", "message": f"Success: the calibration is good, from {len(kept)} photographs.",
                    "advice": "Use the lens and Transform_Cam_Tc.",
                    "commands": ["trackedcam export ue5 --result shoot/result.json"]},
        "findings": [],
        "inputs": {"data": "shoot/data.csv", "workingFolder": FOLDER, "logFolder": FOLDER + "logs",
                   "sensorMm": SENSOR, "board": [COLUMNS, ROWS], "squareMetres": SQUARE,
                   "chartRotationDegrees": stated_angles, "chartTranslationMetres": stated_translation,
                   "invertTrackerQuaternions": False, "expectedRecords": 1000000},
        "time": "2026-11-21 14:05:09", "firstRun": None,
        "crossCheck": {
            "photographs": len(checks), "used": len(kept), "transformCamTc": flat(found_x),
            "transformTrChart": flat(found_y), "covarianceCamTcTwist": covariance,
            "covarianceTrChartTwist": covariance,
            "standardErrorCamTc": errors_x, "standardErrorTrChart": errors_y,
            "comparison": {
                "camTc": comparison(library_x, found_x, product(library_x, inverse(found_x)), errors_x, t95),
                "trChart": comparison(stated_y, found_y, product(inverse(found_y), stated_y), errors_y, t95)},
            "t95": t95, "trackerNoise": {"degrees": noise_deg, "mm": noise_mm}, "trackerNoiseApart": True,
            "cornerNoisePixels": 0.061,
            "lens": {"fx": 0.42, "fy": 0.43, "cx": 0.51, "cy": 0.47, "k1": 0.0011, "k2": 0.014},
            "mounting": {"rotationDegrees": [n + rng.gauss(0, error_deg / 2) for n in ANGLES],
                         "translationMetres": found_y[1]},
            "nominalMounting": {"offMm": mount_mm, "offDegrees": mount_deg, "p": certain,
                                "isCertain": bool(stated), "certaintyText": said, "pScaleFree": certain,
                                "likelyMistake": None, "likelyMistakeText": None},
            "library": {"offMm": off_mm, "offDegrees": off_deg, "p": certain, "isCertain": bool(stated),
                        "certaintyText": said},
            "diversity": {"amplification": 2.31, "weakestAxisInChart": [0.1, 0.2, 0.97]},
            "square": {"factor": 1.0004, "standardError": 0.0006, "p": 0.51}, "step": None,
            "halves": {"offMm": 0.6 * error_mm, "offDegrees": 0.5 * error_deg, "p": 0.61,
                       "isCertain": False},
            "imageCells": {"columns": 16, "rows": 9,
                           "seen": [0 < r < 8 and 0 < c < 15 for r in range(9) for c in range(16)]},
            "onScreen": [on_screen(d) for d in (0.3, 0.5, 1, 2, 3, 5, 8, 12)],
            "suggestedViews": [
                {"tiltDegrees": 45, "tiltDirectionDegrees": 30, "rollDegrees": 90, "distanceMetres": 0.5,
                 "gain": 1.41, "text": "Chart tilted 45 degrees to the upper right, rolled by 90 degrees, near."},
                {"tiltDegrees": 45, "tiltDirectionDegrees": 210, "rollDegrees": -90, "distanceMetres": 0.5,
                 "gain": 1.32, "text": "Chart tilted 45 degrees to the lower left, rolled by -90 degrees, near."}],
            "photographsToHalve": 15},
    }


def exports(transform):
    cm = [100 * n for n in transform[1]]
    common = {"code": 0, "message": "No error", "rotationDeg": [], "quaternionXyzw": [], "fovX": [],
              "lensCentre": [], "log": "logs/run/export.txt", "translationAxes": ["-x", "-y", "z"],
              "trackerAxes": ["-x", "-y", "z"]}
    return {
        "engine-a": {**common, "engine": "engine-a", "title": "Engine A", "hand": "left-handed",
                     "cameraAxes": ["forward", "right", "up"], "translationCm": cm,
                     "rotationDeg": [1.23456, -2.34567, 88.76543]},
        "engine-b": {**common, "engine": "engine-b", "title": "Engine B", "hand": "right-handed",
                     "cameraAxes": ["right", "down", "forward"], "translationCm": cm,
                     "quaternionXyzw": [0.0123456, -0.0234567, 0.6987654, 0.7149876]},
        "engine-c": {**common, "engine": "engine-c", "title": "Engine C", "hand": "left-handed",
                     "cameraAxes": ["right", "up", "forward"], "translationCm": cm,
                     "rotationDeg": [-1.23456, 2.34567, -88.76543], "fovX": [40.64],
                     "lensCentre": [-0.00026, 0.00046]},
    }


# The shoots of the tests.

def perfect():
    return result(1, 20, 0, 0)


def noisy():
    """One photograph does not show the board, and the reprojected image of another one is missing."""
    shoot = result(2, 40, 0.3, 0.05, lost={17: "boardNotFound"})
    next(p for p in shoot["photographs"] if p["reprojectedImage"])["reprojectedImage"] = None
    shoot["findings"] = [{"id": "trackersNoisy", "severity": "note", "advice": "",
                          "text": "The trackers are quiet: 0.30 mm and 0.05 degrees.", "mm": 0.3, "degrees": 0.05}]
    return shoot


def mounting_off():
    stated = [12.7, -7.4, 5.4], [0.118, -0.066, 0.032]
    shoot = result(3, 40, 0.3, 0.05, stated=stated, outliers={29}, lost={4: "notLoaded"})
    library = shoot["crossCheck"]["library"]
    off = shoot["crossCheck"]["nominalMounting"]
    off["likelyMistake"] = "boardTurned"
    off["likelyMistakeText"] = "it was measured to the corner at the other end of the board"
    text = (f"The stated mounting is off by {off['offMm']:.1f} mm and {off['offDegrees']:.2f} degrees, so the result "
            f"by {library['offMm']:.1f} mm and {library['offDegrees']:.2f} degrees.")
    shoot["verdict"] = {"level": "wrong", "message": "The result is wrong: the stated mounting is off.",
                        "advice": "Calibrate again with the mounting that the photographs show.",
                        "commands": ["trackedcam calibrate --config shoot/shoot.toml --refine-mounting"]}
    bad = shoot["photographs"][29]
    shoot["findings"] = [
        {"id": "mountingOff", "severity": "error", "text": text, "offMm": off["offMm"],
         "advice": "Calibrate again with the mounting that was found."},
        {"id": "badPhotographs", "severity": "warning", "advice": "Calibrate again without it.",
         "text": f"1 photograph does not agree: {bad['name']} ({bad['crossCheck']['mm']:.0f} mm).",
         "photographs": [bad["name"]]}]
    return shoot


def refined():
    shoot, first = result(3, 40, 0.3, 0.05, lost={4: "notLoaded"}, left_out={29}), mounting_off()
    keys = ["code", "transformCamTc", "lensErrorPixels", "reprojectionErrorPixels", "translationSpreadMetres",
            "photographs", "log", "inputs", "crossCheck", "verdict", "findings"]
    shoot["firstRun"] = {key: first[key] for key in keys}
    return shoot


def outliers():
    bad = {3, 8, 9, 15, 22, 23, 31, 38}
    shoot = result(4, 40, 0.3, 0.05, outliers=bad)
    for index in range(24, 40):
        check = shoot["photographs"][index]["crossCheck"]
        if check["used"]:
            check["mm"] += 1.1
    shoot["code"], shoot["message"] = 99, "Recalibration is recommended."
    shoot["crossCheck"]["step"] = {"tracker": "chart", "before": 24, "photograph": "photos/img_024.jpg",
                                   "mm": 1.2, "degrees": 0.11, "gain": 55.0}
    shoot["verdict"] = {"level": "doubt", "message": "Usable, but 8 of 40 photographs do not agree.",
                        "advice": "Leave the bad photographs out and calibrate again.",
                        "commands": ["trackedcam calibrate --config shoot/shoot.toml --refine-mounting"]}
    names = [f"photos/img_{i:03}.jpg" for i in sorted(bad)]
    shoot["findings"] = [
        {"id": "badPhotographs", "severity": "warning",
         "text": "8 photographs do not agree with the others: " + ", ".join(names) + ".", "advice": "", "photographs": names},
        {"id": "trackerMoved", "severity": "warning", "advice": "Fix the tracker and shoot again.",
         "text": "The tracker on the chart moved before photos/img_024.jpg, by 1.2 mm and 0.11 degrees."}]
    return shoot


def failed():
    shoot = result(5, 16, 0, 0)
    for index, photograph in enumerate(shoot["photographs"]):
        state = "notUsed" if index % 2 else "boardNotFound" if index % 5 else "notLoaded"
        photograph.update(state=state, reason=REASONS.get(state), libraryErrorPixels=None, reprojectedImage=None,
                          crossCheck=None)
    return {
        "code": 4, "message": "Amount of valid images < 12.", "imageSize": [], "normFocal": [], "normCenter": [],
        "distortion": [], "transformCamTc": [], "fieldOfView": [], "focalLengthMm": [], "lensErrorPixels": None,
        "reprojectionErrorPixels": None, "translationSpreadMetres": None, "photographs": shoot["photographs"],
        "exports": {}, "log": shoot["log"], "versions": shoot["versions"],
        "verdict": {"level": "failed", "message": "Fewer than 12 photographs can be used.",
                    "advice": "Photograph the whole chart, sharp and evenly lit, at least 12 times, and check --board.",
                    "commands": []},
        "findings": [{"id": "fewUsed", "severity": "error", "advice": "",
                      "text": "Only 8 of 16 photographs show the board."}],
        "inputs": {**shoot["inputs"], "chartRotationDegrees": None, "chartTranslationMetres": None},
        "time": "2026-11-21 14:05:09", "firstRun": None, "crossCheck": None}


def hundred():
    return result(6, 100, 0.4, 0.06, outliers={41, 77}, name="A001_C{:03}_take.jpg")


HOSTILE = ["<script>alert(1)</script>.png", "</script><img src=x onerror=alert(2)>.jpg", "quote\" onload='alert(3)'.jpg",
           "two\nlines\r\tand\u0000more.jpg", "very-long-" + "name" * 80 + ".jpg", "javascript:alert(4).jpg",
           "{{policy}}{{{pageJs}}}.jpg", "\u202egnp.eman.jpg", "<!--<script>.png", "&lt;b&gt;.png", "über–𝄞.jpg", "\\back\\slash.jpg"]


def hostile():
    shoot = result(7, len(HOSTILE), 0.3, 0.05, outliers={2})
    for photograph, name in zip(shoot["photographs"], HOSTILE):
        photograph["name"], photograph["path"] = name, FOLDER + name
        if photograph["reprojectedImage"]:
            photograph["reprojectedImage"] = FOLDER + "logs/Reproject_" + name
        if photograph["reason"]:
            photograph["reason"] = "fits the trackers of " + HOSTILE[0]
    for key in ["data", "workingFolder", "logFolder"]:
        shoot["inputs"][key] = HOSTILE[1]
    shoot["log"] = "javascript:alert(5)//</script>"
    shoot["message"] = HOSTILE[0]
    shoot["verdict"]["message"] = "Success </script><script>alert(6)</script>"
    shoot["verdict"]["commands"] = ["trackedcam calibrate --data \"" + HOSTILE[1] + "\""]
    shoot["findings"] = [{"id": "<b>", "severity": "\"><script>alert(7)</script>", "text": HOSTILE[0],
                          "advice": HOSTILE[1], "photographs": HOSTILE}]
    shoot["exports"]["engine-a"]["title"] = HOSTILE[0]
    shoot["versions"] = {"library": HOSTILE[0], "program": HOSTILE[1]}
    shoot["time"] = "</time><script>alert(8)</script>"
    return shoot


SHOOTS = {f.__name__.replace("_", "-"): f
          for f in [perfect, noisy, mounting_off, refined, outliers, failed, hundred, hostile]}


# Small images: the board as it is seen, grey.

def grey_png(width, height, rows):
    chunk = lambda kind, data: (struct.pack(">I", len(data)) + kind + data
                                + struct.pack(">I", zlib.crc32(kind + data)))
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 0, 0, 0, 0))
            + chunk(b"IDAT", zlib.compress(b"".join(b"\0" + row for row in rows), 6)) + chunk(b"IEND", b""))


def image(pose, width=240, height=135):
    if pose is None:
        return grey_png(width, height, [bytes(90 + (x + y) * 60 // (width + height) for x in range(width)) for y in range(height)])
    r, t = (pose[0:3], pose[4:7], pose[8:11]), (pose[3], pose[7], pose[11])
    # The plane of the chart, z = 0: (x, y, 1) to the pixel is a 3x3 matrix, here inverted.
    m = [[r[i][0], r[i][1], t[i]] for i in range(3)]
    c = lambda i, j: (m[(i + 1) % 3][(j + 1) % 3] * m[(i + 2) % 3][(j + 2) % 3]
                      - m[(i + 1) % 3][(j + 2) % 3] * m[(i + 2) % 3][(j + 1) % 3])
    back = [[c(j, i) for j in range(3)] for i in range(3)]
    rows = []
    for y in range(height):
        row = bytearray()
        v = ((y + 0.5) * HEIGHT / height - HEIGHT / 2) / FOCAL
        for x in range(width):
            u = ((x + 0.5) * WIDTH / width - WIDTH / 2) / FOCAL
            w = back[2][0] * u + back[2][1] * v + back[2][2]
            a = (back[0][0] * u + back[0][1] * v + back[0][2]) / w / SQUARE
            b = (back[1][0] * u + back[1][1] * v + back[1][2]) / w / SQUARE
            if -1 <= a < COLUMNS and -1 <= b < ROWS:
                row.append(235 if (math.floor(a) + math.floor(b)) % 2 else 32)
            elif -2 <= a < COLUMNS + 1 and -2 <= b < ROWS + 1:
                row.append(238)
            else:
                row.append(112 + y * 40 // height)
        rows.append(bytes(row))
    return grey_png(width, height, rows)


def main(folder):
    folder.mkdir(parents=True, exist_ok=True)
    for name, make in SHOOTS.items():
        shoot = make()
        (folder / f"{name}.json").write_text(json.dumps(shoot, indent=2, ensure_ascii=False), encoding="utf-8")
        thumbnails = folder / f"{name}.thumbnails"
        thumbnails.mkdir(exist_ok=True)
        for place, photograph in enumerate(shoot["photographs"]):
            (thumbnails / f"{place}.png").write_bytes(image((photograph["crossCheck"] or {}).get("transformCamChart")))


if __name__ == "__main__":
    main(pathlib.Path(sys.argv[1]))
