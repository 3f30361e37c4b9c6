// Each photograph compared with the solution.

#pragma once

#include <vector>

#include "crosscheck/evidence.h"
#include "crosscheck/observations.h"
#include "crosscheck/result.h"
#include "crosscheck/solve.h"

namespace trackedcam::crosscheck {

/// Before anything is solved: poses, views, and why a photograph cannot be used.
std::vector<PerPhotograph> DescribePhotographs(const Observations& observations,
                                               const Evidence& evidence);

/// Adds what the solution shows: used or not and why, how far off, and the predicted corners.
void ComparePhotographs(const Observations& observations, const Evidence& evidence,
                        const Solution& solution, std::vector<PerPhotograph>& photographs);

}  // namespace trackedcam::crosscheck
