// Flaws of chart, lens, trackers and mounts, and what they do to the result, as findings.

#pragma once

#include <optional>
#include <vector>

#include "crosscheck/evidence.h"
#include "crosscheck/result.h"
#include "crosscheck/solve.h"

namespace trackedcam::crosscheck {

/// Those that the corners show and the solution takes into account.
std::vector<Finding> CornerFindings(const CrossCheck& check, const Evidence& evidence,
                                    const Solution& solution);

/// Those that the residuals of the trackers show. Together they are found in one of a hundred
/// shoots without flaws.
std::vector<Finding> TrackerFindings(const CrossCheck& check, const Evidence& evidence,
                                     const Solution& solution,
                                     const std::optional<TrackerLoose>& loose);

}  // namespace trackedcam::crosscheck
