// What is left uncertain, as a viewer sees it.

#pragma once

#include <optional>
#include <vector>

#include "crosscheck/cross_check.h"
#include "crosscheck/evidence.h"
#include "crosscheck/solve.h"

namespace trackedcam::crosscheck {

/// For objects in the middle of the picture and half way to its corners, at several distances.
/// @param library The Transform_Cam_Tc to compare with.
std::vector<OnScreen> OnScreenOf(const Evidence& evidence, const Solution& solution,
                                 const std::optional<Pose>& library);

}  // namespace trackedcam::crosscheck
