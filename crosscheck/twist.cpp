#include "crosscheck/twist.h"

#include <cmath>

#include <Eigen/SVD>

namespace trackedcam::crosscheck {
namespace {

// Below this angle the closed forms divide rounding errors by rounding errors.
constexpr double kSmallAngle = 1e-4;

// Exp of a twist translates by this times the translation of the twist.
Eigen::Matrix3d LeftJacobian(const Eigen::Vector3d& rotation) {
  const double angle = rotation.norm();
  const Eigen::Matrix3d cross = Cross(rotation);
  double a = 0.5 - angle * angle / 24;
  double b = 1.0 / 6 - angle * angle / 120;
  if (angle > kSmallAngle) {
    a = (1 - std::cos(angle)) / (angle * angle);
    b = (angle - std::sin(angle)) / (angle * angle * angle);
  }
  return Eigen::Matrix3d::Identity() + a * cross + b * cross * cross;
}

Eigen::Matrix3d InverseLeftJacobian(const Eigen::Vector3d& rotation) {
  const double angle = rotation.norm();
  const Eigen::Matrix3d cross = Cross(rotation);
  double b = 1.0 / 12 + angle * angle / 720;
  if (angle > kSmallAngle) {
    b = (1 - 0.5 * angle / std::tan(0.5 * angle)) / (angle * angle);
  }
  return Eigen::Matrix3d::Identity() - 0.5 * cross + b * cross * cross;
}

}  // namespace

Eigen::Matrix3d RotationAbout(int axis, double degrees) {
  return Eigen::AngleAxisd(degrees * kDegree, Eigen::Vector3d::Unit(axis)).toRotationMatrix();
}

Eigen::Matrix3d Cross(const Eigen::Vector3d& v) {
  Eigen::Matrix3d cross;
  cross << 0, -v.z(), v.y(), v.z(), 0, -v.x(), -v.y(), v.x(), 0;
  return cross;
}

Pose Exp(const Twist& twist) {
  const Eigen::Vector3d vector = twist.head<3>();
  const double half = 0.5 * vector.norm();
  const double sinc = half > kSmallAngle ? std::sin(half) / half : 1 - half * half / 6;
  Eigen::Quaterniond rotation;
  rotation.w() = std::cos(half);
  rotation.vec() = 0.5 * sinc * vector;
  Pose pose = Pose::Identity();
  pose.linear() = rotation.normalized().toRotationMatrix();
  pose.translation() = LeftJacobian(vector) * twist.tail<3>();
  return pose;
}

Twist Log(const Pose& pose) {
  Eigen::Quaterniond rotation(pose.linear());
  if (rotation.w() < 0) {
    rotation.coeffs() *= -1;
  }
  const double sine = rotation.vec().norm();
  const double factor =
      sine > kSmallAngle ? 2 * std::atan2(sine, rotation.w()) / sine : 2 + sine * sine / 3;
  Twist twist;
  twist.head<3>() = factor * rotation.vec();
  twist.tail<3>() = InverseLeftJacobian(twist.head<3>()) * pose.translation();
  return twist;
}

double RotationDegrees(const Pose& pose) {
  return Log(pose).head<3>().norm() * 180 / EIGEN_PI;
}

Matrix6d Adjoint(const Pose& pose) {
  Matrix6d adjoint = Matrix6d::Zero();
  adjoint.topLeftCorner<3, 3>() = pose.linear();
  adjoint.bottomRightCorner<3, 3>() = pose.linear();
  adjoint.bottomLeftCorner<3, 3>() = Cross(pose.translation()) * pose.linear();
  return adjoint;
}

Eigen::Matrix3d NearestRotation(const Eigen::Matrix3d& matrix) {
  const Eigen::JacobiSVD<Eigen::Matrix3d> svd(matrix, Eigen::ComputeFullU | Eigen::ComputeFullV);
  const double mirror = (svd.matrixU() * svd.matrixV().transpose()).determinant() < 0 ? -1 : 1;
  return svd.matrixU() * Eigen::Vector3d(1, 1, mirror).asDiagonal() * svd.matrixV().transpose();
}

Pose PoseOf(const Eigen::Matrix4d& matrix) {
  Pose pose = Pose::Identity();
  pose.linear() = NearestRotation(matrix.topLeftCorner<3, 3>());
  pose.translation() = matrix.topRightCorner<3, 1>();
  return pose;
}

}  // namespace trackedcam::crosscheck
