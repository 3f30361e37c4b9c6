// Rotations as quaternions, in the order x, y, z, w (scalar last).

#pragma once

#include <Eigen/Geometry>

namespace trackedcam {

using Quaternion = Eigen::Quaterniond;

/// Neither argument nor result is normalised; w is positive when the rotation's trace is.
Quaternion QuaternionFromRotation(const Eigen::Matrix3d& rotation);

/// The rotation block of a quaternion as it is, without normalising it. A zero quaternion gives the
/// identity.
Eigen::Matrix3d RotationFromQuaternion(const Quaternion& quaternion);

/// The rotation Rx(x) * Ry(y) * Rz(z), angles in radians.
Quaternion QuaternionFromAnglesXyz(const Eigen::Vector3d& angles);

}  // namespace trackedcam
