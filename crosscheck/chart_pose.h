// Where the lens shows a point, and how that changes with the point and with the lens.

#pragma once

#include <optional>
#include <vector>

#include <Eigen/Core>

#include "crosscheck/observations.h"
#include "crosscheck/twist.h"

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

// Where the chart stands, by least squares on its corners with the lens held; and what the corners
// say about the lens.

/// The inner corners in frame Chart, metres: row by row, columns fastest.
std::vector<Eigen::Vector3d> BoardPoints(int columns, int rows, double square);

/// The normal equations of one photograph's corners, twists of Transform_Cam_Chart being left ones.
struct CornerEquations {
  Matrix6d byPose;      // pose by pose, pixels²
  Matrix6d byPoseLens;  // pose by lens
  Matrix6d byLens;      // lens by lens
  Twist towards;        // pose by residual
  double squares = 0;   // of the residuals, pixels²
};

/// Nothing where a point lies behind the camera.
std::optional<CornerEquations> EquationsAt(const Pose& Transform_Cam_Chart, const Lens& lens,
                                           const std::vector<Eigen::Vector3d>& board,
                                           const std::vector<Eigen::Vector2d>& corners);

struct ChartPose {
  Pose Transform_Cam_Chart;
  CornerEquations equations;  // there
};

/// Nothing where the corners are no picture of the board.
std::optional<ChartPose> FindChartPose(const Lens& lens, const std::vector<Eigen::Vector3d>& board,
                                       const std::vector<Eigen::Vector2d>& corners);

}  // namespace trackedcam::crosscheck
