// How the chart stood, and how it should stand to bring the uncertainty down.

#pragma once

#include <vector>

#include "crosscheck/cross_check.h"
#include "crosscheck/evidence.h"
#include "crosscheck/solution.h"

namespace trackedcam::crosscheck {

View ViewOf(const Pose& Transform_Cam_Chart, const std::vector<Eigen::Vector3d>& board);

/// The views that add most information, one after the other, each on top of those before it.
std::vector<SuggestedView> SuggestViews(const Evidence& evidence, const Solution& solution);

}  // namespace trackedcam::crosscheck
