// A lens in pixels, and its distortion in both directions.

#pragma once

#include <optional>

#include <Eigen/Core>

#include "host/engines/placement.h"

namespace trackedcam::host {

/// A point (x, y) at depth 1 in front of the lens, x right and y down, is seen at
/// focal * Distorted(x, y) + centre. The centre of the first pixel is (0, 0).
struct LensModel {
  int width = 0;                                  // pixels
  int height = 0;                                 // pixels
  Eigen::Vector2d focal;                          // pixels
  Eigen::Vector2d centre;                         // pixels
  double k1 = 0, k2 = 0, p1 = 0, p2 = 0, k3 = 0;  // of the Brown-Conrady model
  /// The distance from the axis at which the radial distortion turns back: points farther out are
  /// seen farther in. Infinite if it never does.
  double foldRadius = 0;
};

/// @throws InputError if the result does not have the whole lens, or has one that cannot be.
LensModel LensModelOf(const CalibrationOutputs& calibration);

Eigen::Vector2d Distorted(const LensModel& lens, const Eigen::Vector2d& point);

/// The point that is distorted to this one. Nothing if there is none before the fold.
std::optional<Eigen::Vector2d> Undistorted(const LensModel& lens, const Eigen::Vector2d& distorted);

}  // namespace trackedcam::host
