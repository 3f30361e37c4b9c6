// How noisy the trackers are, found from the shoot itself.

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
  double turn = 1e-6;
  double shift = 1e-6;
  bool isApart = false;  // the loops tell the one from the other
};

/// What noise of variance 1 does to a residual: in the frames of both trackers, carried into Cam.
struct NoiseCarriers {
  Matrix6d turn;
  Matrix6d shift;
};

NoiseCarriers CarriersOf(const Pose& Transform_Cam_Tc, const Pose& Transform_Cam_Tr);

/// The sums over the loops that restricted maximum likelihood is made of.
struct LikelihoodSums {
  Eigen::Vector2d squares = Eigen::Vector2d::Zero();  // of weighted residuals, through the carriers
  Eigen::Vector2d expected = Eigen::Vector2d::Zero();  // of these, under the present noise
  Eigen::Matrix2d information = Eigen::Matrix2d::Zero();
};

/// One step of Fisher's scoring from the present noise, which it keeps above what files can hold.
Noise ScoringStep(const Noise& noise, const LikelihoodSums& sums);

// The two transforms as unknowns, and what they expect of each loop.

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

// Gauss-Newton on the loops in use, the noise with it.

/// Moves the unknowns, their covariance and the noise until nothing moves; false where the loops do
/// not determine them.
/// @param holdsNoise Leaves the noise as it is.
bool Refine(const Loops& loops, Solution& solution, bool holdsNoise);

/// What the lens does to the unknowns of a refined solution: through every photograph together.
void CarryLens(const Loops& loops, Solution& solution);

// Both transforms and the trackers' noise together, by weighted least squares on the loops.

/// Which loops a solution may take: those marked, or where none are marked it finds out itself.
struct Choice {
  std::vector<bool> first;     // to begin with
  bool isFixed = false;        // no loop comes or goes
  std::optional<Noise> noise;  // held instead of estimated
};

/// Loops with a disagreement beyond this are left out: one in a thousand of good ones.
double DisagreementLimit();

/// From what the solution holds already. Nothing where the loops do not determine the unknowns.
std::optional<Solution> Solve(const Loops& loops, Solution from, const Choice& choice);

}  // namespace trackedcam::crosscheck
