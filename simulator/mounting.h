// The mounting of the chart on its tracker, in the values that a user types in.

#pragma once

#include <Eigen/Core>
#include <Eigen/Geometry>

namespace trackedcam::simulator {

constexpr double kMetresPerMm = 1e-3;

constexpr double Radians(double degrees) {
  return degrees * (EIGEN_PI / 180);
}
constexpr double Degrees(double radians) {
  return radians * (180 / EIGEN_PI);
}

struct Mounting {
  Eigen::Vector3d anglesDegrees;      // the rotation is Rx * Ry * Rz
  Eigen::Vector3d translationMetres;  // the chart's origin in frame Tr

  /// Transform_Tr_Chart.
  Eigen::Isometry3d Transform() const;
};

/// The mounting with this transform. Its rotation about y must be between -90 and 90 degrees.
Mounting MountingOf(const Eigen::Isometry3d& Transform_Tr_Chart);

}  // namespace trackedcam::simulator
