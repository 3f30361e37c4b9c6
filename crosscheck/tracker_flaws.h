// Flaws of trackers and mounts that the residuals of the solution show: errors that follow
// something instead of being noise.

#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

#include "crosscheck/evidence.h"
#include "crosscheck/result.h"
#include "crosscheck/solve.h"

namespace trackedcam::crosscheck {

/// A hand hardly moves evenly for longer, from one row to the next.
constexpr double kMostSecondsOfMotion = 3;

/// What an error of the trackers follows, tested with all other unknowns following it.
struct TrackerFlawTest {
  TrackerFlaw flaw = TrackerFlaw::kSag;
  double p = 1;
  double delaySeconds = 0;    // for kDelay
  double delayError = 0;      // its standard error; infinite if it is not determined
  double mm = 0;              // root mean square over the photographs
  double degrees = 0;         // the same
  std::vector<Twist> byLoop;  // its part of the residuals, one for each loop
  Eigen::VectorXd moved;      // the unknowns of the solution if the flaw were taken away
  Eigen::MatrixXd covarianceOfMoved;
};

/// Columns of the residual of a loop, a left twist, by the loop's index.
using Columns = Eigen::Matrix<double, 6, Eigen::Dynamic>;
using ColumnsOf = std::function<Columns(std::size_t)>;

/// What is left of the residuals as a sum of columns, with all unknowns following it.
struct ColumnFit {
  Eigen::VectorXd value;       // of each column
  Eigen::MatrixXd covariance;  // of the values
  bool isDetermined = false;   // all are; otherwise the others are 0
};

ColumnFit FitColumns(const ColumnsOf& columnsOf, const Loops& loops, const Solution& solution);

/// All flaws, for the loops in use.
std::vector<TrackerFlawTest> TestTrackers(const Loops& loops, const Solution& solution);

/// How accurately the loops show a delay of the poses, 95 %; nothing if they hardly do.
std::optional<double> DelayKnownToSeconds(const Loops& loops, const Solution& solution);

}  // namespace trackedcam::crosscheck
