"""ST maps: OpenImageIO reads them and warps photographs of a chart with them."""

import json
import os
import subprocess

import cv2
import numpy as np
import OpenImageIO as oiio
import pytest

from conftest import CX, CY, FX, FY, ORIGIN, PROGRAM, RESULT, distorted, library_pixels

SCALE = 1 / 4  # of the picture, so that the tests are fast
WIDTH, HEIGHT = SIZE = [480, 270]
ROUNDED = 5e-5  # pixels: positions from 0 to 1 as 32-bit floats, of a picture of this size


def pixels_of(file):
    """R, G and B of a file: height×width×3."""
    buffer = oiio.ImageBuf(str(file))
    assert buffer.spec().format == oiio.FLOAT and buffer.spec().channelnames[:3] == ("R", "G", "B")
    return buffer.get_pixels(oiio.FLOAT)


def places_in(values, width, height):
    """What a map says, in pixels from the centre of the first pixel of the other picture: (0, 0) is bottom left."""
    return np.stack([values[..., 0] * width - 0.5, (1 - values[..., 1].astype(float)) * height - 0.5], axis=-1)


def centres(width, height):
    x, y = np.meshgrid(np.arange(width, dtype=float), np.arange(height, dtype=float))
    return np.stack([x, y], axis=-1)


def undistorted_pixels(at, margin):
    """Points at depth 1 that the undistorted picture shows at these pixels."""
    return ((at - margin) / SCALE - [CX, CY]) / [FX, FY]


@pytest.fixture(name="maps")
def fixture_maps(exported, tmp_path):
    """A function that exports both maps."""

    def maps(*arguments, **changes):
        named = exported("stmap", "lens.exr", *arguments, **{"imageSize": SIZE, **changes})
        assert not named.exists()
        return {direction: tmp_path / f"lens_{direction}.exr" for direction in ("undistort", "distort")}

    return maps


@pytest.fixture(name="values")
def fixture_values(export):
    """A function that exports the maps and returns what --json prints."""

    def values(*arguments, **changes):
        run = export("stmap", "--out", "lens.exr", "--json", *arguments, **{"imageSize": SIZE, **changes})
        return json.loads(run.stdout)

    return values


def test_the_undistort_map_is_the_library_s_projection(maps):
    values = pixels_of(maps("--overscan", "1.1")["undistort"])
    assert values.shape == (298, 528, 3)
    at = centres(528, 298)
    expected = library_pixels(undistorted_pixels(at, [24, 14]).reshape(-1, 2), SCALE).reshape(at.shape)
    assert np.abs(places_in(values, WIDTH, HEIGHT) - expected).max() < ROUNDED
    assert not values[..., 2].any()


def test_the_distort_map_is_its_inverse(maps):
    values = pixels_of(maps("--overscan", "1.1")["distort"])
    assert values.shape == (HEIGHT, WIDTH, 3)
    back = library_pixels(undistorted_pixels(places_in(values, 528, 298), [24, 14]).reshape(-1, 2), SCALE)
    assert np.abs(back.reshape(HEIGHT, WIDTH, 2) - centres(WIDTH, HEIGHT)).max() < ROUNDED


def test_a_lens_without_distortion_gives_the_pixels_own_places(maps):
    files = maps(distortion=[0, 0, 0, 0, 0])
    for file in files.values():
        values = pixels_of(file)
        assert values.shape == (HEIGHT, WIDTH, 3)
        # The centre of the pixel in the bottom left corner is half a pixel inside.
        assert values[-1, 0, :2] == pytest.approx([0.5 / WIDTH, 0.5 / HEIGHT], abs=1e-7)
        assert np.abs(places_in(values, WIDTH, HEIGHT) - centres(WIDTH, HEIGHT)).max() < ROUNDED


def test_by_default_nothing_of_the_photograph_is_lost(maps, values):
    places = pixels_of(maps()["distort"])[..., :2]
    assert places.min() > 0 and places.max() < 1
    # The picture is no larger than it must be.
    assert abs(places - 0.5).max() > 0.5 - 2 / min(values()["undistortedSize"])


def test_the_overscan_is_said_and_chosen(values, export):
    run = export("stmap", "--out", "lens.exr", "--overscan", "1.1", imageSize=SIZE)
    assert "undistorted picture, pixels             528          298" in run.stdout
    said = values("--overscan", "1.1")
    assert said["imageSize"] == SIZE and said["undistortedSize"] == [528, 298]
    assert said["overscan"] == [528 / 480, 298 / 270]
    # The middle stays between the same pixels.
    assert values("--overscan", "1.0001")["undistortedSize"] == [482, 272]
    # Of a lens that pulls the corners in, nothing is lost without overscan.
    assert values(distortion=[0.1, 0, 0, 0, 0])["undistortedSize"] == SIZE


def test_the_file_says_where_the_lens_comes_from(maps):
    for direction, file in maps().items():
        comments = oiio.ImageBuf(str(file)).spec().getattribute("ImageDescription")
        assert all(part in comments for part in [f"ST map to {direction}", *ORIGIN])


def test_a_lens_that_folds_the_photograph_is_refused(export):
    run = export("stmap", "--out", "lens.exr", distortion=[-0.9, 0, 0, 0, 0], imageSize=SIZE)
    assert run.returncode == 2 and "turns back within the photograph" in run.stderr
    run = export("stmap", "--out", "lens.exr", distortion=[-0.9, 0, 0, 0, 0], normFocal=[9, 16.1], imageSize=SIZE)
    assert run.returncode == 0  # where it folds is far outside


def test_what_lies_beyond_the_fold_is_not_seen_twice(maps):
    # The distorted radius is at most 0.65 focal lengths, a little beyond the corners of the photograph, at a radius of
    # 0.975. Beyond 1.69 it comes back to the middle.
    fold = {"distortion": [-4 / 27 / 0.65**2, 0, 0, 0, 0], "normCenter": [0.5, 0.5]}
    values = pixels_of(maps("--overscan", "4", **fold)["undistort"])
    at = (centres(1920, 1080) + 0.5 - [960, 540]) / (SCALE * np.array([FX, FY]))
    beyond = np.hypot(*np.moveaxis(at, -1, 0)) > 1
    assert beyond.any()
    inside = ((values[..., :2] > 0) & (values[..., :2] < 1)).all(axis=-1)
    assert not (inside & beyond).any()


# The warp of a photograph.

BOARD = (9, 6)


@pytest.fixture(scope="module", name="shoot")
def fixture_shoot(tmp_path_factory):
    """The folder of a simulated shoot with a lens that bends lines by several pixels, and its result."""
    folder = tmp_path_factory.mktemp("shoot") / "shoot"
    subprocess.run([PROGRAM, "simulate", folder, "--photographs", "4", "--image", "1280x720", "--lens",
                    "900,900,652,351,-0.2,0.04", "--noise", "0", "--jpeg-quality", "100", "--uneven-light", "0"],
                   check=True, capture_output=True)
    truth = json.loads((folder / "truth.json").read_text())
    keys = ("imageSize", "normFocal", "normCenter", "distortion", "transformCamTc")
    photographs = [{"state": "used", "path": str(file), "crossCheck": {"corners": corners_of(grey(file)).tolist()}}
                   for file in sorted((folder / "photos").iterdir())]
    result = {**RESULT, **{key: truth[key] for key in keys}, "photographs": photographs}
    (folder / "result.json").write_text(json.dumps(result))
    return folder


EXPORT = [PROGRAM, "export", "stmap", "--result", "result.json", "--out", "lens.exr"]


def exported_from(shoot, *arguments):
    subprocess.run([*EXPORT, *arguments], cwd=shoot, check=True, capture_output=True)
    return {direction: oiio.ImageBuf(str(shoot / f"lens_{direction}.exr")) for direction in ("undistort", "distort")}


def warped(image, st_map):
    """By a program that counts from the top left corner. The picture gets the size of the map."""
    spec = st_map.spec()
    picture = oiio.ImageBuf(oiio.ImageSpec(spec.width, spec.height, 1, oiio.FLOAT))
    assert oiio.ImageBufAlgo.st_warp(picture, image, st_map, filtername="lanczos3", filterwidth=6, chan_s=0, chan_t=1,
                                     flip_s=False, flip_t=True, roi=oiio.ROI(0, spec.width, 0, spec.height, 0, 1, 0, 1))
    return picture


def corners_of(image):
    """In a grey image. A wide window: the corners of a picture without distortion are then on lines to 0.035 pixels."""
    found, corners = cv2.findChessboardCorners(image, BOARD)
    assert found
    criteria = (cv2.TERM_CRITERIA_EPS | cv2.TERM_CRITERIA_MAX_ITER, 100, 1e-5)
    return cv2.cornerSubPix(image, corners, (11, 11), (-1, -1), criteria).reshape(-1, 2)


def grey(file):
    return cv2.imread(str(file), cv2.IMREAD_GRAYSCALE)


def corners_in(buffer):
    return corners_of((np.clip(buffer.get_pixels(oiio.FLOAT)[..., 0], 0, 1) * 255).round().astype(np.uint8))


def bend(corners):
    """The largest distance of a corner from the straight line through its row or column."""
    grid = corners.reshape(BOARD[1], BOARD[0], 2)
    distances = []
    for line in [*grid, *np.swapaxes(grid, 0, 1)]:
        centred = line - line.mean(axis=0)
        across = np.linalg.svd(centred)[2][1]
        distances.append(np.abs(centred @ across).max())
    return max(distances)


def test_the_map_makes_the_lines_of_a_chart_straight(shoot):
    maps = exported_from(shoot)
    bends, warped_bends = [], []
    for file in sorted((shoot / "photos").iterdir()):
        photograph = oiio.ImageBuf(str(file))
        bends.append(bend(corners_in(photograph)))
        undistorted = warped(photograph, maps["undistort"])
        warped_bends.append(bend(corners_in(undistorted)))
        # And the other map bends them as before.
        again = warped(undistorted, maps["distort"])
        assert np.abs(corners_in(again) - corners_in(photograph)).max() < 0.1
    assert max(bends) > 1
    assert max(warped_bends) < 0.05


def test_the_preview_is_the_photograph_in_which_the_chart_reaches_farthest(shoot):
    run = subprocess.run([*EXPORT, "--preview", "preview.png", "--json"], cwd=shoot, check=True, capture_output=True)
    preview = grey(shoot / "preview.png")
    size = json.loads(run.stdout)["undistortedSize"]
    assert [preview.shape[1], preview.shape[0]] == size
    assert bend(corners_of(preview)) < 0.1  # the image library interpolates at 1/32 of a pixel
    photographs = json.loads((shoot / "result.json").read_text())["photographs"]
    reach = [np.hypot(*(np.array(p["crossCheck"]["corners"]) - [640, 360]).T).max() for p in photographs]
    shown = grey(photographs[int(np.argmax(reach))]["path"])
    truth = json.loads((shoot / "truth.json").read_text())
    focal, centre = np.array(truth["normFocal"]) * [1280, 720], np.array(truth["normCenter"]) * [1280, 720]
    undistorted = (corners_of(preview) - (np.array(size) - [1280, 720]) / 2 - centre) / focal
    expected = distorted(undistorted, *truth["distortion"]) * focal + centre
    assert np.abs(corners_of(shown) - expected).max() < 0.1


def test_a_preview_needs_its_photograph(shoot, tmp_path):
    def preview_of(photographs):
        result = {**json.loads((shoot / "result.json").read_text()), "imageSize": SIZE}
        (tmp_path / "result.json").write_text(json.dumps({**result, "photographs": photographs}))
        return subprocess.run([*EXPORT, "--preview", "preview.png"], cwd=tmp_path, capture_output=True,
                              encoding="utf-8", check=False)

    assert "does not name a photograph" in preview_of([]).stderr
    corners = {"corners": [[1, 1]]}
    missing = preview_of([{"state": "used", "path": str(tmp_path / "none.jpg"), "crossCheck": corners}])
    assert missing.returncode == 1 and "none.jpg" in missing.stderr
    text = preview_of([{"state": "used", "path": str(tmp_path / "result.json"), "crossCheck": corners}])
    assert text.returncode == 1 and "is not a photograph" in text.stderr
    cv2.imwrite(str(tmp_path / "small.png"), np.zeros((10, 10, 3), np.uint8))
    small = preview_of([{"state": "used", "path": str(tmp_path / "small.png"), "crossCheck": corners}])
    assert small.returncode == 1 and "does not have the size" in small.stderr
    os.mkfifo(tmp_path / "pipe.png")  # opening it would wait for a writer
    pipe = preview_of([{"state": "used", "path": str(tmp_path / "pipe.png"), "crossCheck": corners}])
    assert pipe.returncode == 1 and "is not a photograph" in pipe.stderr
    assert not (tmp_path / "preview.png").exists()
