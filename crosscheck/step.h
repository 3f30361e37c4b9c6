// Where in the order of the photographs a tracker may have moved, to first order.

#pragma once

#include <cstddef>
#include <optional>

#include "crosscheck/evidence.h"
#include "crosscheck/result.h"
#include "crosscheck/solve.h"

namespace trackedcam::crosscheck {

constexpr std::size_t kLeastBesideStep = 4;  // photographs before and after

struct StepCandidate {
  Tracker tracker = Tracker::kCamera;
  std::size_t before = 0;      // index of the first loop after it
  double score = 0;            // chi squared of six that it may gain; 0 where there is no place
  bool fitsLater = false;      // the solution is right after the step, not before it
  Twist step = Twist::Zero();  // of the photographs that it is not right for
};

/// A loop's disagreement, no larger than that of one that is left out.
double Capped(double disagreement);

/// The best of every place of the order, for either tracker.
StepCandidate BestCandidate(const Loops& loops, const Solution& solution);

// A tracker that moved on its mount between two photographs and stayed there.

struct FoundStep {
  Step step;
  Solution solution;  // with the step
};

/// Tries every place of the order, for either tracker.
std::optional<FoundStep> FindStep(const Loops& loops, const Solution& solution);

}  // namespace trackedcam::crosscheck
