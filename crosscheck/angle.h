#pragma once

#include <Eigen/Core>

namespace trackedcam::crosscheck {

constexpr double kDegree = EIGEN_PI / 180;  // radians

}  // namespace trackedcam::crosscheck
