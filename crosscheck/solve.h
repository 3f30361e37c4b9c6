// The model of a shoot, and its solution by weighted least squares: both transforms together with
// the trackers' noise.

#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include <Eigen/Core>

#include "crosscheck/evidence.h"
#include "crosscheck/result.h"
#include "crosscheck/twist.h"

namespace trackedcam::crosscheck {

/// Variances about (radian²) and along (metre²) each axis of each tracker, in the tracker's frame.
struct Noise {
  double rotation = 1e-6;
  double translation = 1e-6;
  bool isApart = false;  // the loops distinguish the one from the other
};

/// What noise of variance 1 does to a residual: from the frames of both trackers to Cam.
struct NoiseCarriers {
  Matrix6d rotation;
  Matrix6d translation;
};

NoiseCarriers CarriersOf(const Pose& Transform_Cam_Tc, const Pose& Transform_Cam_Tr);

/// What is solved for besides Transform_Cam_Tc. Order: the left twist of Transform_Cam_Tc, the
/// right twist of Transform_Tr_Chart, the size of the squares, the step.
struct Unknowns {
  bool mounting = true;         // otherwise Transform_Tr_Chart is held fixed
  bool squareSize = false;      // a factor of the chart's positions
  std::optional<Tracker> step;  // a left twist in the frame of this tracker
  std::size_t before = 0;       // index of the first loop after the step
};

struct Solution {
  Unknowns unknowns;
  Pose Transform_Cam_Tc = Pose::Identity();
  Pose Transform_Tr_Chart = Pose::Identity();
  double squareFactor = 1;
  Pose step = Pose::Identity();
  Noise noise;
  std::vector<bool> used;            // one for each loop
  std::vector<double> disagreement;  // one for each loop, see DisagreementOf
  Eigen::MatrixXd covariance;        // of the unknowns, with the nuisances held fixed
  Eigen::MatrixXd byNuisances;       // the unknowns by the nuisances
  Eigen::MatrixXd nuisanceRoot;      // times its transpose: their covariance; empty: they are exact
  Eigen::VectorXd nuisanceShift;     // what the loops make of them, in units of the root
  Eigen::MatrixXd nuisanceLeft;      // its covariance, in units of the root
  double inflation = 1;              // of the covariance, by errors that neighbours share

  std::size_t Used() const;
};

/// The prediction of Transform_Cam_Chart from the trackers and the solution.
Pose Predicted(const Loop& loop, std::size_t index, const Solution& solution);

/// From the prediction to Transform_Cam_Chart, as a left twist.
Twist Residual(const Loop& loop, std::size_t index, const Solution& solution);

/// The prediction by the unknowns, as many as 19 columns.
constexpr int kMostUnknowns = 19;
using Design = Eigen::Matrix<double, 6, Eigen::Dynamic, 0, 6, kMostUnknowns>;
Design DesignOf(const Loop& loop, std::size_t index, const Solution& solution);

/// What the nuisances change in the residual if the unknowns follow them, in units of their root.
ByNuisances OwnOfNuisances(const Loop& loop, std::size_t index, const Solution& solution);

/// What is left of the residual with the nuisances as the loops show them. The solution itself
/// keeps those of the corners, and so the lens of the library.
Twist Remaining(const Loop& loop, std::size_t index, const Solution& solution);

/// The covariance of the residual, with the nuisances held fixed.
Matrix6d CovarianceOf(const Loop& loop, const Solution& solution, const Noise& noise);

/// How badly a loop fits: remainingᵀ · covariance⁻¹ · remaining
double DisagreementOf(const Loop& loop, std::size_t index, const Solution& solution,
                      const Noise& noise);

/// Loops with a larger disagreement are left out: one in a thousand of good ones.
/// @param used Loops from which the noise was estimated: few show it less accurately.
double DisagreementLimit(std::size_t used);

struct SolveOptions {
  std::vector<bool> first;  // the loops to begin with
  bool isFixed = false;     // use these and no others
};

/// Degrees of freedom of the noise and so of the intervals: three for each loop.
double Freedom(std::size_t used);

/// @param from Where to begin.
/// @return Nothing if the loops do not determine the unknowns.
std::optional<Solution> Solve(const Loops& loops, Solution from, const SolveOptions& options);

/// Of a whole shoot, from the first solution that random samples give. Nothing if there is none.
std::optional<Solution> SolveShoot(const Evidence& evidence);

}  // namespace trackedcam::crosscheck
