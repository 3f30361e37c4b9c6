// The pose of the chart that its corners say, with lens and board held fixed, and what the corners
// then say of lens and board.

#pragma once

#include <optional>
#include <vector>

#include <Eigen/Core>

#include "crosscheck/corner_model.h"
#include "crosscheck/observations.h"
#include "crosscheck/twist.h"

namespace trackedcam::crosscheck {

/// Transform_Chart_Reversed: the chart's frame if its corners are counted from the last one.
Pose ReversedBoard(const std::vector<Eigen::Vector3d>& board);

/// The pixel by the left twist of the pose that brings the point into frame Cam.
using PixelByTwist = Eigen::Matrix<double, 2, 6>;
PixelByTwist ByTwist(const Projection& seen, const Eigen::Vector3d& point);

/// The normal equations of one photograph's corners, for the left twist of Transform_Cam_Chart.
struct PoseEquations {
  Matrix6d byPose;     // pose by pose, pixels²
  Twist towards;       // pose by residual
  double squares = 0;  // of the residuals, pixels²
};

/// Nothing if a point is behind the camera.
std::optional<PoseEquations> EquationsAt(const Pose& Transform_Cam_Chart, const Lens& lens,
                                         const std::vector<Eigen::Vector3d>& board,
                                         const std::vector<Eigen::Vector2d>& corners);

struct ChartPose {
  Pose Transform_Cam_Chart;
  PoseEquations equations;  // at this pose
};

/// By least squares; nothing if the corners are not an image of the board.
std::optional<ChartPose> FindChartPose(const Lens& lens, const std::vector<Eigen::Vector3d>& board,
                                       const std::vector<Eigen::Vector2d>& corners);

/// The same from a pose that is near.
std::optional<ChartPose> RefineChartPose(const Pose& Transform_Cam_Chart, const Lens& lens,
                                         const std::vector<Eigen::Vector3d>& board,
                                         const std::vector<Eigen::Vector2d>& corners);

/// What one photograph's corners say of the parameters of the corner model, the pose following
/// them to keep the residuals smallest.
struct ModelEquations {
  CornerMatrix information;                          // pixels² by the parameters
  CornerVector towards;                              // parameters by residual
  Eigen::Matrix<double, 6, kCornerParameters> pose;  // the left twist of the pose by the parameters
};

/// At the pose that fits best.
ModelEquations ModelEquationsAt(const ChartPose& pose, const CornerModel& model,
                                const std::vector<Eigen::Vector2d>& corners);

}  // namespace trackedcam::crosscheck
