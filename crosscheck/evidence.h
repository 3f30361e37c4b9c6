// What is known before anything is solved: one loop of transforms for each photograph, and how
// accurately the corners determine the chart's poses and the lens.

#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "crosscheck/chart_pose.h"
#include "crosscheck/observations.h"
#include "crosscheck/reported_poses.h"
#include "crosscheck/twist.h"

namespace trackedcam::crosscheck {

/// Without noise: Transform_Cam_Chart = Transform_Cam_Tc · Transform_Tc_Tr · Transform_Tr_Chart.
struct Loop {
  std::size_t photograph = 0;  // index in Observations::photographs
  Pose Transform_Cam_Chart = Pose::Identity();
  Pose Transform_Tc_Tr = Pose::Identity();
  /// Of the left twist of Transform_Cam_Chart, with the lens held fixed.
  Matrix6d cornerCovariance = Matrix6d::Zero();
  Matrix6d byLens = Matrix6d::Zero();  // that twist by fx, fy, cx, cy, k1, k2
};

using Loops = std::vector<Loop>;

/// Of the chart from the camera, metres.
double MeanDistance(const Loops& loops);

struct Evidence {
  Lens lens;
  std::vector<Eigen::Vector3d> board;
  std::vector<std::optional<ChartPose>> chartPoses;  // one for each photograph
  double cornerNoisePixels = 0;
  Matrix6d lensCovariance;  // of fx, fy, cx, cy, k1, k2, as solved from all corners together
  Loops loops;              // of the photographs that can be used, in order
};

Evidence Gather(const Observations& observations);

/// The mean squared distance between the corners of the board in two poses; metres².
class BoardDistance {
 public:
  explicit BoardDistance(const Evidence& evidence);
  double Squared(const Pose& a, const Pose& b) const;

 private:
  Eigen::Matrix4d moments_;
};

}  // namespace trackedcam::crosscheck
