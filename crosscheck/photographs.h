// Each photograph against the solution.

#pragma once

#include <vector>

#include "crosscheck/evidence.h"
#include "crosscheck/observations.h"
#include "crosscheck/result.h"
#include "crosscheck/solve.h"

namespace trackedcam::crosscheck {

/// What is known of them before anything is solved: poses, views, and which cannot be used.
std::vector<PerPhotograph> DescribePhotographs(const Observations& observations,
                                               const Evidence& evidence);

/// Adds what the solution says: used or not and why, how far off, the corners that it expects.
void ComparePhotographs(const Observations& observations, const Evidence& evidence,
                        const Solution& solution, std::vector<PerPhotograph>& photographs);

}  // namespace trackedcam::crosscheck
