// Where the chart stands, by least squares on its corners with the lens held; and what the corners
// say about the lens.

#pragma once

#include <optional>
#include <vector>

#include <Eigen/Core>

#include "crosscheck/observations.h"
#include "crosscheck/twist.h"

namespace trackedcam::crosscheck {

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
