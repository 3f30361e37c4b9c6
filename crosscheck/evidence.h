// What is known before anything is solved: one loop of transforms for each photograph, and how
// accurately the corners determine the chart's poses and the lens.

#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "crosscheck/corner_flaws.h"
#include "crosscheck/observations.h"
#include "crosscheck/reported_poses.h"
#include "crosscheck/twist.h"

namespace trackedcam::crosscheck {

/// What is known from elsewhere with an uncertainty, and moves all photographs together: the
/// parameters of the corner model that were solved for (the lens's six first), and last the scale
/// of the trackers' lengths against the squares.
constexpr int kMostNuisances = kCornerParameters + 1;
using ByNuisances = Eigen::Matrix<double, 6, Eigen::Dynamic, 0, 6, kMostNuisances>;

/// One pose of the trackers, with one photograph or several.
/// Without noise: Transform_Cam_Chart = Transform_Cam_Tc · Transform_Tc_Tr · Transform_Tr_Chart.
struct Loop {
  /// Indices in Observations::photographs: several if their rows repeat a pose. The trackers'
  /// noise is then the same in all of them.
  std::vector<std::size_t> photographs;
  Pose Transform_Base_Tc = Pose::Identity();
  double seconds = 0;  // of the first photograph; NaN if it is not known
  Pose Transform_Cam_Chart = Pose::Identity();
  Pose Transform_Tc_Tr = Pose::Identity();
  /// Of the left twist of Transform_Cam_Chart, with lens and board held fixed.
  Matrix6d cornerCovariance = Matrix6d::Zero();
  ByNuisances byNuisances;  // that twist
};

using Loops = std::vector<Loop>;

/// Of the chart from the camera, metres.
double MeanDistance(const Loops& loops);

struct Evidence {
  CornerFit corners;
  Lens libraryLens;                    // as the library solved it, without flaws
  Eigen::MatrixXd nuisanceCovariance;  // NaN if the corners do not determine the lens
  Eigen::MatrixXd nuisanceRoot;        // times its transpose: nuisanceCovariance
  Loops loops;                         // of the photographs that can be used, in order
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
