// How sure a solution is, and how far it is from another one.

#pragma once

#include "crosscheck/cross_check.h"
#include "crosscheck/evidence.h"
#include "crosscheck/solution.h"

namespace trackedcam::crosscheck {

/// Of the unknowns, with what the lens's own uncertainty adds.
Eigen::MatrixXd FullCovariance(const Solution& solution, const Evidence& evidence);

/// Of the noise and so of the intervals: three for each photograph.
double Freedom(const Solution& solution);

/// Of the translation and about the axes of the target frame.
StandardError StandardErrorOfLeftTwist(const Matrix6d& covariance, const Pose& pose);
StandardError StandardErrorOfRightTwist(const Matrix6d& covariance, const Pose& pose);

/// The distance only.
Offset Between(const Pose& a, const Pose& b);

/// Whether another Transform_Cam_Tc can be the true one.
Offset CompareCamTc(const Solution& solution, const Matrix6d& covariance, const Pose& other);

/// Whether another Transform_Tr_Chart can be the true one; the covariance is of its right twist.
Offset CompareMounting(const Solution& solution, const Matrix6d& covariance, const Pose& other);

/// How far a tracker stands otherwise in the second half of the used photographs than in the first;
/// of the two the one that it is likelier of. Nothing where there are too few photographs.
std::optional<Offset> CompareHalves(const Evidence& evidence, const Solution& solution);

Diversity DiversityOf(const Loops& loops, const Solution& solution);

}  // namespace trackedcam::crosscheck
