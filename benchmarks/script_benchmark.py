#!/usr/bin/env python3
"""Calibrates a shoot as an engineer would script it with OpenCV's own calls, and measures time and accuracy.

Usage: script_benchmark.py SHOOT

SHOOT is a folder written by `trackedcam simulate`. Needs the package python3-opencv.

The script searches at full size with the default flags, refines, and calls calibrateCamera and
calibrateHandEye once. It needs no mounting, because the tracker on the chart takes the place of the robot's base.
"""

import csv
import json
import pathlib
import sys
import time

import cv2
import numpy as np

BOARD, SQUARE_M = (9, 6), 0.03
# The reported x, y, z of a tracker are used as -x, -z, -y.
AXIS_FIX = np.array([[-1, 0, 0, 0], [0, 0, -1, 0], [0, -1, 0, 0], [0, 0, 0, 1]], float)


def pose(x, y, z, qw, qx, qy, qz):
    q = np.array([qw, qx, qy, qz]) / np.linalg.norm([qw, qx, qy, qz])
    w, (a, b, c) = q[0], q[1:]
    cross = np.array([[0, -c, b], [c, 0, -a], [-b, a, 0]])
    transform = np.eye(4)
    transform[:3, :3] = np.eye(3) + 2 * w * cross + 2 * cross @ cross
    transform[:3, 3] = x, y, z
    return transform @ AXIS_FIX


folder = pathlib.Path(sys.argv[1])
truth = np.array(json.loads((folder / "truth.json").read_text())["transformCamTc"]).reshape(4, 4)
rows = [row for row in csv.reader((folder / "tracker_data.csv").open()) if row[0] != "Time"]

begin = time.perf_counter()
corners, relative = [], []
for row in rows:
    image = cv2.imread(str(folder / row[1]))
    if image is None:
        continue
    grey = cv2.cvtColor(image, cv2.COLOR_BGR2GRAY)
    found, points = cv2.findChessboardCorners(grey, BOARD)
    if found:
        criteria = (cv2.TERM_CRITERIA_EPS + cv2.TERM_CRITERIA_MAX_ITER, 30, 0.001)
        corners.append(cv2.cornerSubPix(grey, points, (11, 11), (-1, -1), criteria))
        numbers = [float(text) for text in row[2:]]
        relative.append(np.linalg.inv(pose(*numbers[7:])) @ pose(*numbers[:7]))  # Transform_Tr_Tc
searched = time.perf_counter()

board = np.zeros((BOARD[0] * BOARD[1], 3), np.float32)
board[:, :2] = np.mgrid[:BOARD[0], :BOARD[1]].T.reshape(-1, 2) * SQUARE_M
_, camera_matrix, _, rotations, translations = cv2.calibrateCamera(
    [board] * len(corners), corners, grey.shape[::-1], None, None)
rotation, translation = cv2.calibrateHandEye(
    [t[:3, :3] for t in relative], [t[:3, 3] for t in relative],
    [cv2.Rodrigues(r)[0] for r in rotations], translations)
end = time.perf_counter()

tc_cam = np.eye(4)
tc_cam[:3, :3], tc_cam[:3, 3] = rotation, translation.ravel()
off = np.linalg.inv(tc_cam) @ np.linalg.inv(truth)
degrees = np.degrees(np.linalg.norm(cv2.Rodrigues(off[:3, :3])[0]))
millimetres = 1000 * np.linalg.norm(np.linalg.inv(tc_cam)[:3, 3] - truth[:3, 3])
print(f"{len(corners)} of {len(rows)} photographs, {end - begin:.2f} s, of which {searched - begin:.2f} s to find "
      f"corners; transform off by {millimetres:.2f} mm, {degrees:.3f} deg")
