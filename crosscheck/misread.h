// Mistakes in reading: rows that fit better in another reading, and mountings that are stated
// wrongly.

#pragma once

#include <optional>
#include <vector>

#include "crosscheck/evidence.h"
#include "crosscheck/observations.h"
#include "crosscheck/result.h"
#include "crosscheck/twist.h"

namespace trackedcam::crosscheck {

/// The reading that fits best, if it fits at least four times as well as the rows as they are.
std::optional<MisreadRows> FindMisreadRows(const Observations& observations,
                                           const Evidence& evidence);

/// The mistake that explains the difference between the stated mounting and the one found.
std::optional<MountingMistake> LikelyMistake(const Mounting& stated,
                                             const std::vector<Eigen::Vector3d>& board,
                                             const Pose& Transform_Tr_Chart);

}  // namespace trackedcam::crosscheck
