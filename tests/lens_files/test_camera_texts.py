"""OpenCV, ROS and COLMAP read their files as the library means them."""

import struct
import subprocess

import cv2
import numpy as np
import yaml

from conftest import CX, CY, FX, FY, HEIGHT, ORIGIN, RESULT, WIDTH, distorted, library_pixels, points

PIXELS = 1e-6
CONVERT = "/usr/lib/camera_calibration_parsers/convert"


def opencv_pixels(matrix, distortion):
    at = np.column_stack([points(), np.ones(len(points()))])
    return cv2.projectPoints(at, np.zeros(3), np.zeros(3), matrix, distortion)[0].reshape(-1, 2)


def test_opencv_reads_its_file(exported):
    file = cv2.FileStorage(str(exported("opencv", "camera.yml")), cv2.FILE_STORAGE_READ)
    assert [file.getNode(name).real() for name in ("image_width", "image_height")] == [WIDTH, HEIGHT]
    matrix = file.getNode("camera_matrix").mat()
    distortion = file.getNode("distortion_coefficients").mat()
    assert matrix.dtype == distortion.dtype == np.float64
    assert np.abs(opencv_pixels(matrix, distortion) - library_pixels(points())).max() < PIXELS


def test_ros_reads_its_file(exported, tmp_path):
    file = exported("ros", "camera.yaml")
    subprocess.run([CONVERT, file, tmp_path / "read.yaml"], check=True, capture_output=True)
    read = yaml.safe_load((tmp_path / "read.yaml").read_text())
    assert (read["image_width"], read["image_height"], read["camera_name"]) == (WIDTH, HEIGHT, "camera")
    assert read["distortion_model"] == "plumb_bob"
    assert read["distortion_coefficients"]["data"] == RESULT["distortion"]  # k1, k2, t1, t2, k3
    assert read["rectification_matrix"]["data"] == [1, 0, 0, 0, 1, 0, 0, 0, 1]
    matrix = np.array(read["camera_matrix"]["data"]).reshape(3, 3)
    projection = np.array(read["projection_matrix"]["data"]).reshape(3, 4)
    assert np.array_equal(projection, np.column_stack([matrix, np.zeros(3)]))
    pixels = opencv_pixels(matrix, np.array(read["distortion_coefficients"]["data"]))
    assert np.abs(pixels - library_pixels(points())).max() < PIXELS


def colmap_camera(folder):
    """The camera as COLMAP has read and written it: model, width, height, parameters."""
    for name in ("images.txt", "points3D.txt"):
        (folder / name).touch()
    (folder / "read").mkdir()
    subprocess.run(["colmap", "model_converter", "--input_path", folder, "--output_path", folder / "read",
                    "--output_type", "BIN"], check=True, capture_output=True)
    data = (folder / "read/cameras.bin").read_bytes()
    cameras, _, model, width, height = struct.unpack("<QiiQQ", data[:32])
    assert cameras == 1
    return model, width, height, struct.unpack(f"<{(len(data) - 32) // 8}d", data[32:])


def test_colmap_reads_its_file(exported, tmp_path):
    exported("colmap", "cameras.txt", distortion=[*RESULT["distortion"][:4], 0])
    model, width, height, (fx, fy, cx, cy, k1, k2, p1, p2) = colmap_camera(tmp_path)
    assert (model, width, height) == (4, WIDTH, HEIGHT)  # OPENCV
    pixels = distorted(points(), k1, k2, p1, p2, 0) * [fx, fy] + [cx, cy]
    expected = distorted(points(), *RESULT["distortion"][:4], 0) * [FX, FY] + [CX, CY]
    assert np.abs(pixels - (expected + 0.5)).max() < PIXELS  # counted from the corner of the first pixel


def test_colmap_gets_k3_in_its_full_model(exported, tmp_path):
    exported("colmap", "cameras.txt")
    model, _, _, (fx, fy, cx, cy, k1, k2, p1, p2, k3, *rest) = colmap_camera(tmp_path)
    assert model == 6 and rest == [0, 0, 0]  # FULL_OPENCV
    pixels = distorted(points(), k1, k2, p1, p2, k3) * [fx, fy] + [cx, cy]
    assert np.abs(pixels - (library_pixels(points()) + 0.5)).max() < PIXELS


def test_small_numbers_are_numbers_to_every_reader(export):
    read = yaml.safe_load(export("ros", distortion=[1e-05, -2e-07, 0, 0, 0]).stdout)
    assert read["distortion_coefficients"]["data"] == [1e-05, -2e-07, 0, 0, 0]


def test_comments_say_where_the_lens_comes_from(export):
    for name in ("opencv", "ros", "colmap"):
        comments = [line for line in export(name).stdout.splitlines() if line.startswith("# ")]
        for part in ORIGIN:
            assert any(part in comment for comment in comments), (name, part)


def test_no_name_of_a_photograph_leaves_the_comments(export, exported):
    message = "usable\ncamera_name: other\r\u0085\u2028\x1b[31m Bühne"
    verdict = {"level": "good", "message": message}
    assert yaml.safe_load(export("ros", verdict=verdict).stdout)["camera_name"] == "camera"
    assert "usable?camera_name: other????[31m B?hne" in export("colmap", verdict=verdict).stdout
    file = cv2.FileStorage(str(exported("opencv", "camera.yml", verdict=verdict)), cv2.FILE_STORAGE_READ)
    assert file.getNode("image_width").real() == WIDTH
