// How sure a solution is, and how far it is from another one.

#pragma once

#include <vector>

#include "crosscheck/evidence.h"
#include "crosscheck/result.h"
#include "crosscheck/solve.h"

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

// What the uncertainty looks like in the picture.

/// The 95 % of the worst direction, as the root mean square over the picture, for things that stand
/// still beside the tracking system and are drawn into the picture at this distance.
OnScreen OnScreenAt(double distanceMetres, const Evidence& evidence, const Solution& solution,
                    const std::optional<Pose>& library);

std::vector<OnScreen> OnScreenAtAll(const Evidence& evidence, const Solution& solution,
                                    const std::optional<Pose>& library);

}  // namespace trackedcam::crosscheck
