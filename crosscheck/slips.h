// How mountings are stated wrongly.

#pragma once

#include <optional>
#include <string>

#include "crosscheck/observations.h"
#include "crosscheck/twist.h"

namespace trackedcam::crosscheck {

/// The id of the slip that turns the stated mounting into the one found, or nothing.
std::optional<std::string> LikelySlip(const Observations& observations,
                                      const Pose& Transform_Tr_Chart);

}  // namespace trackedcam::crosscheck
