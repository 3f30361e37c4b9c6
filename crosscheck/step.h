// A tracker that moved on its mount between two photographs and stayed there.

#pragma once

#include <optional>

#include "crosscheck/evidence.h"
#include "crosscheck/result.h"
#include "crosscheck/solve.h"

namespace trackedcam::crosscheck {

struct FoundStep {
  Step step;
  Solution solution;  // with the step
};

/// Tries every place in the order of the photographs, for either tracker.
std::optional<FoundStep> FindStep(const Loops& loops, const Solution& solution);

}  // namespace trackedcam::crosscheck
