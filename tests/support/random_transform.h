#pragma once

#include <random>

#include <Eigen/Geometry>

#include "geometry/transform.h"

namespace trackedcam::test {

/// A random rotation (all are equally likely) and a translation of up to a metre along each axis.
inline Transform RandomTransform(std::mt19937& random) {
  std::normal_distribution<double> normal;
  std::uniform_real_distribution<double> metre(-1, 1);
  Eigen::Quaterniond rotation(normal(random), normal(random), normal(random), normal(random));
  rotation.normalize();
  return MakeTransform(rotation.toRotationMatrix(), {metre(random), metre(random), metre(random)});
}

/// The transform with an additional rotation about an axis of its target frame, and an additional
/// translation in metres.
inline Transform Disturbed(const Transform& transform, double degrees, const Eigen::Vector3d& axis,
                           const Eigen::Vector3d& shift) {
  Transform disturbed = transform;
  disturbed.topLeftCorner<3, 3>() =
      Eigen::AngleAxisd(degrees * EIGEN_PI / 180, axis.normalized()).toRotationMatrix() *
      transform.topLeftCorner<3, 3>();
  disturbed.topRightCorner<3, 1>() += shift;
  return disturbed;
}

}  // namespace trackedcam::test
