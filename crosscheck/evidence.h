// What the photographs and rows say, before anything is solved: two sides of a loop for each
// photograph, and how well the corners tell the one and the lens.

#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "crosscheck/chart_pose.h"
#include "crosscheck/observations.h"
#include "crosscheck/reported_poses.h"
#include "crosscheck/twist.h"

namespace trackedcam::crosscheck {

/// Transform_Cam_Chart = Transform_Cam_Tc · Transform_Tc_Tr · Transform_Tr_Chart, but for noise.
struct Loop {
  std::size_t photograph = 0;  // index in Observations::photographs
  Pose Transform_Cam_Chart = Pose::Identity();
  Pose Transform_Tc_Tr = Pose::Identity();
  Matrix6d cornerCovariance =
      Matrix6d::Zero();  // of the left twist of Transform_Cam_Chart, with the lens held
  Matrix6d byLens = Matrix6d::Zero();  // that twist by fx, fy, cx, cy, k1, k2
};

using Loops = std::vector<Loop>;

struct Evidence {
  Lens lens;
  std::vector<Eigen::Vector3d> board;
  std::vector<std::optional<ChartPose>> chartPoses;  // one for each photograph
  double cornerNoisePixels = 0;
  Matrix6d lensCovariance;  // of fx, fy, cx, cy, k1, k2, if solved from all these corners together
  Loops loops;              // of the photographs that can be used, in order
};

Evidence Gather(const Observations& observations);

/// The mean squared distance between the board as two poses place it, from its corners; metres².
class BoardDistance {
 public:
  explicit BoardDistance(const Evidence& evidence);
  double Squared(const Pose& a, const Pose& b) const;

 private:
  Eigen::Matrix4d moments_;
};

}  // namespace trackedcam::crosscheck
