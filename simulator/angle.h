#pragma once

#include <Eigen/Core>

namespace trackedcam::simulator {

constexpr double Radians(double degrees) {
  return degrees * (EIGEN_PI / 180);
}
constexpr double Degrees(double radians) {
  return radians * (180 / EIGEN_PI);
}

}  // namespace trackedcam::simulator
