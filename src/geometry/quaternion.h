// Rotations as quaternions. coeffs() is in the order x, y, z, w.

#pragma once

#include <Eigen/Geometry>

namespace trackedcam {

using Quaternion = Eigen::Quaterniond;

/// Normalises neither the argument nor the result. If the trace of the rotation is positive, so is
/// w.
Quaternion QuaternionFromRotation(const Eigen::Matrix3d& rotation);

/// Does not normalise the quaternion. A zero quaternion gives the identity.
Eigen::Matrix3d RotationFromQuaternion(const Quaternion& quaternion);

/// The rotation Rx(x) * Ry(y) * Rz(z), angles in radians.
Quaternion QuaternionFromAnglesXyz(const Eigen::Vector3d& angles);

}  // namespace trackedcam
