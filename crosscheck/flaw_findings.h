// Flaws of chart, lens, trackers and mounts, and what they do to the result, as findings.

#pragma once

#include <optional>
#include <vector>

#include "crosscheck/evidence.h"
#include "crosscheck/result.h"
#include "crosscheck/solve.h"
#include "crosscheck/tracker_flaws.h"

namespace trackedcam::crosscheck {

/// Those that the corners show and the solution takes into account.
std::vector<Finding> CornerFindings(const CrossCheck& check, const Evidence& evidence,
                                    const Solution& solution);

/// What the residuals of the trackers follow most clearly. Together with errors that follow nothing
/// known, something is found in one of a hundred shoots without flaws.
std::optional<TrackerFlawTest> ClearestFlaw(const CrossCheck& check, const Evidence& evidence,
                                            const Solution& solution);

/// That flaw, or errors that neighbouring photographs share.
std::optional<Finding> TrackerFinding(const CrossCheck& check, const Evidence& evidence,
                                      const Solution& solution,
                                      const std::optional<TrackerFlawTest>& flaw);

}  // namespace trackedcam::crosscheck
