// Each photograph against the solution.

#pragma once

#include <vector>

#include "crosscheck/cross_check.h"
#include "crosscheck/evidence.h"
#include "crosscheck/solve.h"

namespace trackedcam::crosscheck {

/// How the board, whose middle is given in frame Chart, stands before the camera.
View ViewOf(const Pose& Transform_Cam_Chart, const Eigen::Vector3d& middle);

/// One for each photograph of the observations. Without a solution nothing is predicted.
std::vector<PerPhotograph> PhotographsAgainst(const Observations& observations,
                                              const Evidence& evidence, const Solution* solution);

}  // namespace trackedcam::crosscheck
