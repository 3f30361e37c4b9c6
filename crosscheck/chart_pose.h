// The pose of the chart that its corners say, with the lens held fixed.

#pragma once

#include <optional>
#include <vector>

#include <Eigen/Core>

#include "crosscheck/observations.h"
#include "crosscheck/twist.h"

namespace trackedcam::crosscheck {

/// The inner corners in frame Chart, metres: row by row, columns fastest.
std::vector<Eigen::Vector3d> BoardPoints(int columns, int rows, double square);

/// Transform_Chart_Reversed: the chart's frame if its corners are counted from the last one.
Pose ReversedBoard(const std::vector<Eigen::Vector3d>& board);

/// The pixel of a point in front of the camera, given in frame Cam.
Eigen::Vector2d Project(const Lens& lens, const Eigen::Vector3d& point);

struct Projection {
  Eigen::Vector2d pixel;
  Eigen::Matrix<double, 2, 3> byPoint;  // pixels per metre
  Eigen::Matrix<double, 2, 6> byLens;   // pixels per unit of fx, fy, cx, cy, k1, k2
};

Projection ProjectWithDerivatives(const Lens& lens, const Eigen::Vector3d& point);

/// The point of the plane z = 1 of frame Cam that has this pixel; nothing beyond the radius at
/// which the distortion folds the image back.
std::optional<Eigen::Vector2d> Ray(const Lens& lens, const Eigen::Vector2d& pixel);

/// The normal equations of one photograph's corners, for the left twist of Transform_Cam_Chart.
struct CornerEquations {
  Matrix6d byPose;      // pose by pose, pixels²
  Matrix6d byPoseLens;  // pose by lens
  Matrix6d byLens;      // lens by lens
  Twist towards;        // pose by residual
  double squares = 0;   // of the residuals, pixels²
};

/// Nothing if a point is behind the camera.
std::optional<CornerEquations> EquationsAt(const Pose& Transform_Cam_Chart, const Lens& lens,
                                           const std::vector<Eigen::Vector3d>& board,
                                           const std::vector<Eigen::Vector2d>& corners);

struct ChartPose {
  Pose Transform_Cam_Chart;
  CornerEquations equations;  // at this pose
};

/// By least squares; nothing if the corners are not an image of the board.
std::optional<ChartPose> FindChartPose(const Lens& lens, const std::vector<Eigen::Vector3d>& board,
                                       const std::vector<Eigen::Vector2d>& corners);

}  // namespace trackedcam::crosscheck
