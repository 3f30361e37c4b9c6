// The two transforms as unknowns, and what they expect of each loop.

#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "crosscheck/cross_check.h"
#include "crosscheck/evidence.h"
#include "crosscheck/noise.h"

namespace trackedcam::crosscheck {

/// What is sought besides the two transforms. Order of the unknowns: the left twist of
/// Transform_Cam_Tc, the right twist of Transform_Tr_Chart, the size of the squares, the step.
struct Sought {
  bool mounting = true;         // else it is held
  bool squareSize = false;      // a factor of the chart's positions
  std::optional<Tracker> step;  // a left twist in the tracker's own frame
  std::size_t before = 0;       // index of the first loop after it
};

struct Solution {
  Sought sought;
  Pose Transform_Cam_Tc = Pose::Identity();
  Pose Transform_Tr_Chart = Pose::Identity();
  double squareFactor = 1;
  Pose step = Pose::Identity();
  Noise noise;
  std::vector<bool> used;            // one for each loop
  std::vector<double> disagreement;  // of each loop: residualᵀ · covariance⁻¹ · residual
  Eigen::MatrixXd covariance;        // of the unknowns that are sought, without the lens
  Eigen::MatrixXd byLens;            // those unknowns by fx, fy, cx, cy, k1, k2

  std::size_t Used() const;
};

constexpr int kMostUnknowns = 19;
using Design = Eigen::Matrix<double, 6, Eigen::Dynamic, 0, 6, kMostUnknowns>;

int CountUnknowns(const Sought& sought);

/// The camera's transform for one loop: with the step where that is after it and of this tracker.
Pose Transform_Cam_Tc_At(const Solution& solution, std::size_t index);

/// What the trackers and a solution expect of Transform_Cam_Chart.
Pose Predicted(const Loop& loop, std::size_t index, const Solution& solution);

/// Transform_Cam_Chart against the prediction, as a left twist.
Twist Residual(const Loop& loop, std::size_t index, const Solution& solution);

/// The change of the prediction by the unknowns.
Design DesignOf(const Loop& loop, std::size_t index, const Solution& solution);

/// The covariance of the residual under this noise.
Matrix6d CovarianceOf(const Loop& loop, const Solution& solution, const Noise& noise);

}  // namespace trackedcam::crosscheck
