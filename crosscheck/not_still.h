// Photographs that were taken in motion, as their blur shows it. Rows that are far apart in time do
// not.

#pragma once

#include <optional>
#include <vector>

#include "crosscheck/observations.h"
#include "crosscheck/result.h"

namespace trackedcam::crosscheck {

/// Most rows follow the one before so soon that the motion between them is that of both: a delay
/// shows in them.
bool AreRowsOfAFilm(const Observations& observations);

/// Where edges are wider along one direction of the board than along the other, the corners are
/// further from their prediction in that direction too. Nothing if that may be chance, or if too
/// few photographs have their edges measured.
std::optional<NotStill> FindNotStill(const Observations& observations,
                                     const std::vector<PerPhotograph>& photographs);

}  // namespace trackedcam::crosscheck
