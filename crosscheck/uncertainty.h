// How accurate a solution is, and how far it is from another one.

#pragma once

#include <optional>
#include <vector>

#include <Eigen/Core>

#include "crosscheck/evidence.h"
#include "crosscheck/result.h"
#include "crosscheck/solve.h"

namespace trackedcam::crosscheck {

/// Of the unknowns, with the uncertainty of the nuisances.
Eigen::MatrixXd FullCovariance(const Solution& solution, const Evidence& evidence);

/// What lens and board add to the covariance of Transform_Cam_Tc.
Matrix6d CovarianceFromLens(const Solution& solution, const Evidence& evidence);

/// @param covariance Of the left twist of the pose.
StandardError StandardErrorOfLeftTwist(const Matrix6d& covariance, const Pose& pose);
/// @param covariance Of the right twist of the pose.
StandardError StandardErrorOfRightTwist(const Matrix6d& covariance, const Pose& pose);

/// Without p.
Offset Between(const Pose& a, const Pose& b);

/// Tests another Transform_Cam_Tc.
/// @param covariance Of the left twist.
Offset CompareCamTc(const Solution& solution, const Matrix6d& covariance, const Pose& other);

/// Tests another Transform_Tr_Chart.
/// @param covariance Of the right twist.
Offset CompareTrChart(const Solution& solution, const Matrix6d& covariance, const Pose& other);

/// Axis by axis; a transform that is not known is NaN.
/// @param error Of the found transform.
/// @param t95 Half the width of the 95 % interval, in standard errors.
TransformComparison CompareAxesCamTc(const Pose& other, const Pose& found,
                                     const StandardError& error, double t95);
TransformComparison CompareAxesTrChart(const Pose& other, const Pose& found,
                                       const StandardError& error, double t95);

/// How differently a tracker sits on its mount in the second half of the used photographs: of both
/// trackers the one with the smaller p. Nothing if there are too few photographs.
std::optional<Offset> CompareHalves(const Evidence& evidence, const Solution& solution);

Diversity DiversityOf(const Loops& loops, const Solution& solution);

}  // namespace trackedcam::crosscheck
