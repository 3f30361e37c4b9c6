// Rigid transforms between the frames Cam, Tc, Tr, Base and Chart.
//
// Transform_A_B takes coordinates given in frame B into frame A: p_A = Transform_A_B * p_B.
// Products read right to left.

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

/// Reads the boundary form, 16 numbers row by row. Numbers behind the 16th are ignored.
Transform TransformFromVector(const std::vector<double>& elements);

/// Appends the boundary form.
void AppendTransform(std::vector<double>& elements, const Transform& transform);

/// The transform with this rotation block and this translation in metres.
Transform MakeTransform(const Eigen::Matrix3d& rotation, const Eigen::Vector3d& translation);

/// Writes the label and then the four rows.
void LogTransform(const RunLog& log, const std::string& label, const Transform& transform);

/// Changes the handedness by mirroring the z axis on both sides: out = C * in * C. Returns 0.
ResultCode ChangeHand(RunLog log, const Transform& in, Transform& out);

/// The general 4x4 inverse. A singular matrix gives values that are not finite.
Transform InverseTransform(const Transform& transform);

/// Copies the upper left 3x3 block. Returns 0.
ResultCode RotationBlock(RunLog log, const Transform& in, Eigen::Matrix3d& out);

}  // namespace trackedcam
