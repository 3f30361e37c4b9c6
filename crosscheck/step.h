// A tracker that moved on its mount: once, and stayed there, or to and fro between two seats.

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

/// Two seats of either tracker into which the photographs fall.
std::optional<TrackerLoose> FindLooseTracker(const Loops& loops, const Solution& solution);

}  // namespace trackedcam::crosscheck
