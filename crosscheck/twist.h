#pragma once

#include <Eigen/Core>
#include <Eigen/Geometry>

namespace trackedcam::crosscheck {

constexpr double kDegree = EIGEN_PI / 180;  // radians

// Rigid transforms and the small displacements between them: six numbers, turn before shift.

using Pose = Eigen::Isometry3d;  // named Transform_A_B: p_A = Transform_A_B · p_B; metres
using Twist = Eigen::Matrix<double, 6, 1>;
using Matrix6d = Eigen::Matrix<double, 6, 6>;

/// The matrix of v × .
Eigen::Matrix3d Cross(const Eigen::Vector3d& v);

Pose Exp(const Twist& twist);

/// The inverse of Exp, its turn at most half a turn.
Twist Log(const Pose& pose);

/// pose · Exp(d) = Exp(Adjoint(pose) · d) · pose
Matrix6d Adjoint(const Pose& pose);

/// The rotation nearest to a matrix.
Eigen::Matrix3d NearestRotation(const Eigen::Matrix3d& matrix);

/// Whatever rounding has done to its rotation is undone.
Pose PoseOf(const Eigen::Matrix4d& matrix);

}  // namespace trackedcam::crosscheck
