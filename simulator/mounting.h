#pragma once

#include <Eigen/Core>
#include <Eigen/Geometry>

namespace trackedcam::simulator {

constexpr double Radians(double degrees) {
  return degrees * (EIGEN_PI / 180);
}
constexpr double Degrees(double radians) {
  return radians * (180 / EIGEN_PI);
}

// How the chart sits on its tracker, in the figures that a user types in.

struct Mounting {
  Eigen::Vector3d anglesDegrees;      // the rotation is Rx * Ry * Rz
  Eigen::Vector3d translationMetres;  // the chart's origin in frame Tr

  /// Transform_Tr_Chart.
  Eigen::Isometry3d Transform() const;
};

/// The figures of this transform; its turn about y must be less than 90 degrees either way.
Mounting MountingOf(const Eigen::Isometry3d& Transform_Tr_Chart);

}  // namespace trackedcam::simulator
