// Rigid transforms between the frames Cam, Tc, Tr, Base and Chart.
//
// Transform_A_B converts coordinates in frame B to frame A: p_A = Transform_A_B * p_B. Products
// read right to left.

#pragma once

#include <string>
#include <vector>

#include <Eigen/Core>

#include "core/result_code.h"
#include "core/run_log.h"

namespace trackedcam {

/// 4x4, homogeneous: rotation in the upper left 3x3 block, translation in metres in column 3.
using Transform = Eigen::Matrix4d;
using TransformList = std::vector<Transform>;

/// Reads the form of the public functions: at least 16 numbers, row by row. Further numbers are
/// ignored.
Transform TransformFromVector(const std::vector<double>& elements);

/// Appends the form of the public functions: 16 numbers, row by row.
void AppendTransform(std::vector<double>& elements, const Transform& transform);

/// A transform from its rotation block and its translation (metres).
Transform MakeTransform(const Eigen::Matrix3d& rotation, const Eigen::Vector3d& translation);

/// Logs the label and the four rows, one line each.
void LogTransform(const RunLog& log, const std::string& label, const Transform& transform);

/// Changes the handedness: out = C * in * C, where C mirrors the z axis. Returns 0.
ResultCode ChangeHand(RunLog log, const Transform& in, Transform& out);

/// The general 4x4 inverse. For a singular matrix the elements are infinite or NaN.
Transform InverseTransform(const Transform& transform);

/// Copies the upper left 3x3 block. Returns 0.
ResultCode RotationBlock(RunLog log, const Transform& in, Eigen::Matrix3d& out);

}  // namespace trackedcam
