// Where the lens shows a point, and how that changes with the point and with the lens.

#pragma once

#include <optional>

#include <Eigen/Core>

#include "crosscheck/observations.h"

namespace trackedcam::crosscheck {

struct Projection {
  Eigen::Vector2d pixel;
  Eigen::Matrix<double, 2, 3> byPoint;  // pixels per metre
  Eigen::Matrix<double, 2, 6> byLens;   // pixels per unit of fx, fy, cx, cy, k1, k2
};

/// The pixel of a point in front of the camera, given in frame Cam.
Eigen::Vector2d Project(const Lens& lens, const Eigen::Vector3d& point);

Projection ProjectWithDerivatives(const Lens& lens, const Eigen::Vector3d& point);

/// The point in the plane z = 1 of frame Cam that is seen at this pixel; nothing where the
/// distortion folds the picture back before it.
std::optional<Eigen::Vector2d> Ray(const Lens& lens, const Eigen::Vector2d& pixel);

}  // namespace trackedcam::crosscheck
