// What the uncertainty looks like in the picture.

#pragma once

#include <vector>

#include "crosscheck/cross_check.h"
#include "crosscheck/evidence.h"
#include "crosscheck/solution.h"

namespace trackedcam::crosscheck {

/// The 95 % of the worst direction, as the root mean square over the picture, for things that stand
/// still beside the tracking system and are drawn into the picture at this distance.
OnScreen OnScreenAt(double distanceMetres, const Evidence& evidence, const Solution& solution,
                    const std::optional<Pose>& library);

std::vector<OnScreen> OnScreenAtAll(const Evidence& evidence, const Solution& solution,
                                    const std::optional<Pose>& library);

}  // namespace trackedcam::crosscheck
