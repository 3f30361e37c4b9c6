"""The sample of OpenTrackIO: its schema, and the equations of OpenLensIO evaluated on it."""

import copy
import json
import pathlib

import jsonschema
import numpy as np
import pytest

from conftest import CX, CY, ORIGIN, RESULT, WIDTH, HEIGHT, library_pixels, points

SCHEMA = json.loads((pathlib.Path(__file__).parent / "opentrackio_schema.json").read_text())


@pytest.fixture(name="sample")
def fixture_sample(export):
    return json.loads(export("opentrackio").stdout)


def polynomial_ratio(radial, r2):
    """Equation 17: k1, k3, k5 in the numerator, k2, k4, k6 in the denominator."""
    k = list(radial) + [0] * (6 - len(radial))
    return ((1 + k[0] * r2 + k[2] * r2**2 + k[4] * r2**3) / (1 + k[1] * r2 + k[3] * r2**2 + k[5] * r2**3))


def applied(distortion, at):
    """Equation 16, in millimetres."""
    x, y = at.T
    r2 = x * x + y * y
    p1, p2 = distortion["tangential"]
    ratio = polynomial_ratio(distortion["radial"], r2)
    return np.stack([ratio * x + 2 * p1 * x * y + p2 * (r2 + 2 * x * x),
                     ratio * y + p1 * (r2 + 2 * y * y) + 2 * p2 * x * y], axis=-1)


def inverse(distortion, at):
    """The point to which equation 16 gives this one."""
    point = at.copy()
    for _ in range(200):
        point += at - applied(distortion, point)
    return point


def sample_pixels(sample, at):
    """Where the sample's lens shows points, from the centre of the first pixel."""
    lens, camera = sample["lens"], sample["static"]["camera"]
    undistorted = lens["pinholeFocalLength"] * at
    distortion = lens["distortion"][0]
    is_undistorted_to_distorted = distortion.get("model", "Brown-Conrady D-U") == "Brown-Conrady U-D"
    seen = (applied if is_undistorted_to_distorted else inverse)(distortion, undistorted)
    offset = lens["projectionOffset"]
    sensor, pixels = camera["activeSensorPhysicalDimensions"], camera["activeSensorResolution"]
    image = np.array([pixels["width"], pixels["height"]])
    scale = image / [sensor["width"], sensor["height"]]
    # From the middle of the image, y down; then from its corner; then from the first pixel's centre.
    return (seen + [offset["x"], offset["y"]]) * scale + image / 2 - 0.5


def off(sample):
    return np.abs(sample_pixels(sample, points()) - library_pixels(points())).max()


def test_the_sample_is_valid(sample):
    validator = jsonschema.Draft202012Validator(SCHEMA)
    validator.check_schema(SCHEMA)
    assert not list(validator.iter_errors(sample))
    # The same check finds an error that is there.
    sample["lens"]["focalLength"] = 35.0
    assert list(validator.iter_errors(sample))


def test_the_equations_give_the_library_s_pixels(sample):
    assert sample["protocol"] == {"name": "OpenTrackIO", "version": [1, 0, 1]}
    assert off(sample) < 1e-9


def test_each_trap_would_be_seen(sample):
    def changed(change):
        other = copy.deepcopy(sample)
        change(other["lens"], other["lens"]["distortion"][0])
        return off(other)

    k1, _, k2, _, k3, _ = sample["lens"]["distortion"][0]["radial"]
    focal_length = sample["lens"]["pinholeFocalLength"]
    width, height = 36, focal_length / (RESULT["normFocal"][1])
    half_a_pixel = (0.5 * width / WIDTH, 0.5 * height / HEIGHT)
    assert changed(lambda lens, d: d.update(radial=[k1, k2, k3])) > 3  # naive order
    assert changed(lambda lens, d: d.pop("model")) > 30  # the default direction
    assert changed(lambda lens, d: d.update(tangential=[p / focal_length for p in d["tangential"]])) > 1  # p/F²
    assert changed(lambda lens, d: lens["projectionOffset"].update(
        x=lens["projectionOffset"]["x"] - half_a_pixel[0], y=lens["projectionOffset"]["y"] - half_a_pixel[1])) > 0.4
    assert changed(lambda lens, d: lens["projectionOffset"].update(y=-lens["projectionOffset"]["y"])) > 10  # y up
    assert changed(lambda lens, d: lens["projectionOffset"].update(
        x=lens["projectionOffset"]["x"] / width, y=lens["projectionOffset"]["y"] / height)) > 1  # parts of the sensor


def test_the_projection_offset_is_in_millimetres_with_y_down(sample):
    offset = sample["lens"]["projectionOffset"]
    assert offset["x"] == pytest.approx((CX + 0.5 - WIDTH / 2) * 36 / WIDTH, abs=1e-12)
    assert offset["y"] == pytest.approx((CY + 0.5 - HEIGHT / 2) * (0.9 * 36 / 1.61) / HEIGHT, abs=1e-12)
    assert offset["y"] < 0  # the principal point is above the middle


def rotation(pan, tilt, roll):
    """Intrinsic about Z, X, Y; positive from X to Y, from Y to Z, from Z to X."""
    (cp, sp), (ct, st), (cr, sr) = ((np.cos(a), np.sin(a)) for a in np.radians([pan, tilt, roll]))
    return (np.array([[cp, -sp, 0], [sp, cp, 0], [0, 0, 1]]) @ np.array([[1, 0, 0], [0, ct, -st], [0, st, ct]]) @
            np.array([[cr, 0, sr], [0, 1, 0], [-sr, 0, cr]]))


# X, Y, Z of a sample's tracker in the reported axes.
AXES = {"z-forward": [[-1, 0, 0], [0, 0, 1], [0, 1, 0]], "minus-z-forward": [[1, 0, 0], [0, 0, -1], [0, 1, 0]],
        "y,z,x": [[0, 1, 0], [0, 0, 1], [1, 0, 0]]}


@pytest.mark.parametrize("axes", AXES)
def test_the_transforms_lead_from_the_tracker_to_the_entrance_pupil(export, axes):
    random = np.random.default_rng(25)
    for _ in range(20):
        # A tracker anywhere, and the camera at it: Transform_Cam_Tc is in the axes after the axis fix.
        cam_tc = np.eye(4)
        cam_tc[:3, :3] = rotation(*random.uniform(-180, 180, 3))
        cam_tc[:3, 3] = random.uniform(-0.3, 0.3, 3)
        run = export("opentrackio", "--parent-axes=" + axes, transformCamTc=cam_tc.ravel().tolist())
        sample = json.loads(run.stdout)
        (transform,) = sample["transforms"]
        assert transform["id"] == "Camera"
        found = rotation(**transform["rotation"])
        # The entrance pupil lies on the axis, Y, in metres.
        pupil = (np.array([transform["translation"][axis] for axis in "xyz"]) +
                 found @ [0, sample["lens"]["entrancePupilOffset"], 0])
        fix = np.array([[-1, 0, 0], [0, 0, -1], [0, -1, 0]])
        from_camera = np.array(AXES[axes]) @ fix.T @ cam_tc[:3, :3].T
        assert np.abs(pupil + from_camera @ cam_tc[:3, 3]).max() < 1e-9
        right, down, forward = from_camera.T
        assert np.abs(found - np.stack([right, forward, -down], axis=-1)).max() < 1e-9


def test_the_rotation_holds_at_the_gimbal_lock(export):
    for tilt in (90, -90):
        # The camera looks along the tracker's Z: its axes right, forward, up as columns.
        camera = rotation(20, tilt, 0)
        fix = np.array([[-1, 0, 0], [0, 0, -1], [0, -1, 0]])
        cam_tc = np.eye(4)
        right, forward, up = camera.T
        cam_tc[:3, :3] = (fix @ np.array(AXES["z-forward"]).T @ np.stack([right, -up, forward], axis=-1)).T
        sample = json.loads(export("opentrackio", transformCamTc=cam_tc.ravel().tolist()).stdout)
        assert np.abs(rotation(**sample["transforms"][0]["rotation"]) - camera).max() < 1e-9


def test_left_handed_axes_are_refused(export):
    run = export("opentrackio", "--parent-axes=x,z,y")
    assert run.returncode == 2 and "x,z,y is left-handed" in run.stderr


def test_the_history_says_where_the_lens_comes_from(sample, export):
    history = sample["static"]["lens"]["calibrationHistory"]
    assert all(any(part in line for line in history) for part in ORIGIN)
    long = json.loads(export("opentrackio", verdict={"level": "good", "message": "x" * 3000}).stdout)
    assert not list(jsonschema.Draft202012Validator(SCHEMA).iter_errors(long))
