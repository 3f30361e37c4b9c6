#!/usr/bin/env python3
"""Calibrates from corners and tracker rows in plain Python and double precision.

It follows docs/method.md and docs/conventions.md and shares nothing with the library: no code, no
image library, and no linear algebra except the few lines below.

Usage: reference.py INPUT.txt > figures.txt
"""

import math
import sys


# Matrices are lists of rows.

def product(*matrices):
    result = matrices[0]
    for right in matrices[1:]:
        result = [[sum(row[k] * right[k][c] for k in range(len(right))) for c in range(len(right[0]))]
                  for row in result]
    return result


def inverse(t):
    """The inverse of a rigid transform."""
    turned = [[t[c][r] for c in range(3)] for r in range(3)]
    shift = [-sum(turned[r][k] * t[k][3] for k in range(3)) for r in range(3)]
    return rigid(turned, shift)


def rigid(rotation, shift):
    return [[*rotation[r], shift[r]] for r in range(3)] + [[0, 0, 0, 1]]


def solve(matrix, right):
    """Solves linear equations by Gaussian elimination with the largest pivot."""
    rows = [[*row, value] for row, value in zip(matrix, right)]
    n = len(rows)
    for k in range(n):
        pivot = max(range(k, n), key=lambda r: abs(rows[r][k]))
        rows[k], rows[pivot] = rows[pivot], rows[k]
        for r in range(k + 1, n):
            factor = rows[r][k] / rows[k][k]
            if factor:
                rows[r] = [a - factor * b for a, b in zip(rows[r], rows[k])]
    for k in reversed(range(n)):
        rows[k][n] = (rows[k][n] - sum(rows[k][c] * rows[c][n] for c in range(k + 1, n))) / rows[k][k]
    return [row[n] for row in rows]


# Rotations.

def turn(vector):
    """The rotation about a vector by its length, radians."""
    angle = math.hypot(*vector)
    x, y, z = (v / angle for v in vector) if angle else (1, 0, 0)
    c, s = math.cos(angle), math.sin(angle)
    return [[c + x * x * (1 - c), x * y * (1 - c) - z * s, x * z * (1 - c) + y * s],
            [y * x * (1 - c) + z * s, c + y * y * (1 - c), y * z * (1 - c) - x * s],
            [z * x * (1 - c) - y * s, z * y * (1 - c) + x * s, c + z * z * (1 - c)]]


def from_quaternion(w, x, y, z):
    vector = math.hypot(x, y, z)
    angle = 2 * math.atan2(vector, w)
    return turn([v / vector * angle for v in (x, y, z)] if vector else [0, 0, 0])


def axis_angle(r):
    skew = [r[2][1] - r[1][2], r[0][2] - r[2][0], r[1][0] - r[0][1]]
    length = math.hypot(*skew)
    return [v / length for v in skew], math.atan2(length, r[0][0] + r[1][1] + r[2][2] - 1)


def quaternion(r):
    axis, angle = axis_angle(r)
    return [math.cos(angle / 2), *(math.sin(angle / 2) * a for a in axis)]


def mean(transforms):
    """The mean of the translations, and the unit quaternion that fits all best, with either sign."""
    n = len(transforms)
    shift = [sum(t[r][3] for t in transforms) / n for r in range(3)]
    quaternions = [quaternion(t) for t in transforms]
    moment = [[sum(q[r] * q[c] for q in quaternions) / n for c in range(4)] for r in range(4)]
    best = quaternions[0]
    for _ in range(1000):  # power iteration
        best = [sum(row[c] * best[c] for c in range(4)) for row in moment]
        length = math.hypot(*best)
        best = [b / length for b in best]
    return rigid(from_quaternion(*best), shift)


# The lens.

def project(lens, pose, point):
    fx, fy, cx, cy, k1, k2 = lens
    x, y, z = (sum(pose[r][k] * point[k] for k in range(3)) + pose[r][3] for r in range(3))
    x, y = x / z, y / z
    r2 = x * x + y * y
    radial = 1 + k1 * r2 + k2 * r2 * r2
    return fx * radial * x + cx, fy * radial * y + cy


def first_pose(lens, board, corners):
    """The pose from the homography that fits best, without distortion."""
    fx, fy, cx, cy, _, _ = lens
    normal = [[0.0] * 8 for _ in range(8)]
    right = [0.0] * 8
    for (bx, by, _), (u, v) in zip(board, corners):
        x, y = (u - cx) / fx, (v - cy) / fy
        for row, value in (([bx, by, 1, 0, 0, 0, -x * bx, -x * by], x),
                           ([0, 0, 0, bx, by, 1, -y * bx, -y * by], y)):
            for r in range(8):
                right[r] += row[r] * value
                for c in range(8):
                    normal[r][c] += row[r] * row[c]
    h = [*solve(normal, right), 1]
    scale = math.hypot(h[0], h[3], h[6])
    a = [h[i] / scale for i in (0, 3, 6)]
    b = [h[i] / scale for i in (1, 4, 7)]
    along = sum(p * q for p, q in zip(a, b))
    b = [q - along * p for p, q in zip(a, b)]
    length = math.hypot(*b)
    b = [q / length for q in b]
    c = [a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]]
    return rigid([[a[r], b[r], c[r]] for r in range(3)], [h[i] / scale for i in (2, 5, 8)])


def moved(pose, step):
    return product(rigid(turn(step[:3]), step[3:]), pose)


def residuals(lens, pose, board, corners):
    return [seen - predicted for point, corner in zip(board, corners)
            for predicted, seen in zip(project(lens, pose, point), corner)]


def slopes(lens, pose, board, corners):
    """The derivatives of the residuals by lens and pose, as central differences."""
    columns = []
    for k in range(12):
        size = (1e-4 if k < 4 else 1e-6)
        ends = []
        for sign in (-1, 1):
            step = [sign * size if k == i else 0.0 for i in range(12)]
            ends.append(residuals([a + b for a, b in zip(lens, step)], moved(pose, step[6:]), board,
                                  corners))
        columns.append([(after - before) / (2 * size) for before, after in zip(*ends)])
    return columns


def calibrate(size, board, photographs):
    """Solves lens and poses with the Levenberg-Marquardt algorithm."""
    lens = [float(size[0])] * 2 + [(size[0] - 1) / 2, (size[1] - 1) / 2, 0.0, 0.0]
    poses = [first_pose(lens, board, corners) for corners in photographs]
    cost = lambda l, p: sum(r * r for pose, corners in zip(p, photographs)
                            for r in residuals(l, pose, board, corners))
    damping, current = 1e-3, cost(lens, poses)
    for _ in range(200):
        n = 6 + 6 * len(poses)
        normal = [[0.0] * n for _ in range(n)]
        right = [0.0] * n
        for i, (pose, corners) in enumerate(zip(poses, photographs)):
            off = residuals(lens, pose, board, corners)
            columns = slopes(lens, pose, board, corners)
            places = [*range(6), *range(6 + 6 * i, 12 + 6 * i)]
            for a, column in zip(places, columns):
                right[a] -= sum(s * o for s, o in zip(column, off))
                for b, other in zip(places, columns):
                    normal[a][b] += sum(s * o for s, o in zip(column, other))
        for k in range(n):
            normal[k][k] *= 1 + damping
        step = solve(normal, right)
        new_lens = [a + b for a, b in zip(lens, step)]
        new_poses = [moved(pose, step[6 + 6 * i:12 + 6 * i]) for i, pose in enumerate(poses)]
        new = cost(new_lens, new_poses)
        if new < current:
            lens, poses, damping = new_lens, new_poses, damping / 10
            done = current - new < 1e-13 * current
            current = new
            if done:
                break
        else:
            damping *= 10
            if damping > 1e12:
                break
    return lens, poses, math.sqrt(current / (len(photographs) * len(board)))


# Cameras and trackers.

def tracker(position, w, x, y, z):
    """A reported pose in the axes of the solving stages: the reported x, y, z count as -x, -z, -y."""
    return product(rigid(from_quaternion(w, x, y, z), position),
                   rigid([[-1, 0, 0], [0, 0, -1], [0, -1, 0]], [0, 0, 0]))


def nominal_mounting(angles, shift):
    x, y, z = (math.radians(a) for a in angles)
    return inverse(rigid(product(turn([x, 0, 0]), turn([0, y, 0]), turn([0, 0, z])), shift))


def spread(transforms, centre):
    return [math.sqrt(sum((t[r][3] - centre[r][3]) ** 2 for t in transforms) / len(transforms))
            for r in range(3)]


def outliers(estimates, centre):
    centre_axis, _ = axis_angle(centre)
    limits = [0.5, *(1.3 * s for s in spread(estimates, centre))]
    found = []
    for i, t in enumerate(estimates):
        axis, _ = axis_angle(t)
        measures = [math.degrees(math.acos(min(1, sum(a * b for a, b in zip(axis, centre_axis))))),
                    *(abs(t[r][3] - centre[r][3]) for r in range(3))]
        # The set of outliers must not depend on the last digit of a value.
        assert all(abs(m / l - 1) > 0.005 for m, l in zip(measures, limits)), "too near to a limit"
        if any(m > l for m, l in zip(measures, limits)):
            found.append(i)
    return found


def read(path):
    words = {}
    photographs = []
    lines = iter(open(path, encoding="utf-8").read().splitlines())
    for line in lines:
        if line == "RAW DATA START":
            break
        key, *values = line.split()
        words[key] = [float(v) for v in values]
    cols, rows, _ = words["board"]
    for line in lines:
        if line == "RAW DATA END":
            break
        record = [float(v) for v in next(lines).split()]
        photographs.append((record, [tuple(float(v) for v in next(lines).split())
                                     for _ in range(int(cols * rows))]))
    return words, photographs


def main():
    words, photographs = read(sys.argv[1])
    size = words["image"]
    cols, rows, square = words["board"]
    board = [(c * square, r * square, 0) for r in range(int(rows)) for c in range(int(cols))]
    corners = [c for _, c in photographs]
    lens, cam_chart, lens_error = calibrate(size, board, corners)
    base_tc = [tracker(r[1:4], *r[4:8]) for r, _ in photographs]
    base_tr = [tracker(r[8:11], *r[11:15]) for r, _ in photographs]
    loop = list(zip(cam_chart, base_tr, base_tc, corners))

    def estimates(loop, chart_tr):
        return [product(a, chart_tr, inverse(tr), tc) for a, tr, tc, _ in loop]

    def error(loop, cam_tc, chart_tr):
        total = 0
        for _, tr, tc, seen in loop:
            pose = product(cam_tc, inverse(tc), tr, inverse(chart_tr))
            total += sum(math.dist(project(lens, pose, point), corner)
                         for point, corner in zip(board, seen)) / len(board)
        return total / len(loop)

    nominal = nominal_mounting(words["mounting"][:3], words["mounting"][3:])
    all_first = estimates(loop, nominal)
    first = mean(all_first)
    first_error = error(loop, first, nominal)
    removed = outliers(all_first, first)
    loop = [entry for i, entry in enumerate(loop) if i not in removed]
    mounting = mean([product(inverse(a), first, inverse(tc), tr) for a, tr, tc, _ in loop])
    all_second = estimates(loop, mounting)
    second = mean(all_second)
    second_error = error(loop, second, mounting)
    spreads = spread(all_second, second)
    norm = second_error / size[1]
    code = (6 if max(spreads) > 0.015 else 99 if max(spreads) > 0.01 else
            14 if norm > 18 / 1080 else 99 if norm > 12 / 1080 else 0)

    flat = lambda t: [v for row in t for v in row]
    for name, values in (("lens", lens), ("lensError", [lens_error]), ("firstCamTc", flat(first)),
                         ("firstError", [first_error]), ("removed", reversed(removed)),
                         ("chartTr", flat(mounting)), ("camTc", flat(second)),
                         ("error", [second_error]), ("spread", spreads), ("code", [code])):
        print(name, *(f"{v:.9f}" if isinstance(v, float) else v for v in values))


main()
