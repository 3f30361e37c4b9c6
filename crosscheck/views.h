// Which views would tell most of what the shoot does not.

#pragma once

#include <vector>

#include "crosscheck/cross_check.h"
#include "crosscheck/evidence.h"
#include "crosscheck/solve.h"

namespace trackedcam::crosscheck {

/// Views that can be shot, the best first, each chosen with those before it already taken.
std::vector<SuggestedView> SuggestViews(const Evidence& evidence, const Solution& solution);

}  // namespace trackedcam::crosscheck
