// Rigid transforms, and the twists that they differ by.

#pragma once

#include <Eigen/Core>
#include <Eigen/Geometry>

namespace trackedcam::crosscheck {

constexpr double kDegree = EIGEN_PI / 180;  // radians

using Pose = Eigen::Isometry3d;  // named Transform_A_B: p_A = Transform_A_B · p_B; metres

/// The rotation (a vector along its axis, as long as its angle, radians) before the translation
/// (metres).
using Twist = Eigen::Matrix<double, 6, 1>;
using Matrix6d = Eigen::Matrix<double, 6, 6>;

/// About x, y or z (axis 0, 1 or 2).
Eigen::Matrix3d RotationAbout(int axis, double degrees);

/// The matrix of v × .
Eigen::Matrix3d Cross(const Eigen::Vector3d& v);

Pose Exp(const Twist& twist);

/// The inverse of Exp, with an angle of at most 180 degrees.
Twist Log(const Pose& pose);

/// The angle of the rotation.
double RotationDegrees(const Pose& pose);

/// pose · Exp(d) = Exp(Adjoint(pose) · d) · pose
Matrix6d Adjoint(const Pose& pose);

/// The rotation nearest to a matrix.
Eigen::Matrix3d NearestRotation(const Eigen::Matrix3d& matrix);

/// The pose of a matrix whose rotation is rounded.
Pose PoseOf(const Eigen::Matrix4d& matrix);

}  // namespace trackedcam::crosscheck
