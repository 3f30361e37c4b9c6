// Both transforms and the trackers' noise together, by weighted least squares on the loops.

#pragma once

#include <optional>
#include <vector>

#include "crosscheck/evidence.h"
#include "crosscheck/solution.h"

namespace trackedcam::crosscheck {

/// Which loops a solution may take: those marked, or where none are marked it finds out itself.
struct Choice {
  std::vector<bool> first;     // to begin with
  bool isFixed = false;        // no loop comes or goes
  std::optional<Noise> noise;  // held instead of estimated
};

/// Loops with a disagreement beyond this are left out: one in a thousand of good ones.
double DisagreementLimit();

/// From what the solution holds already. Nothing where the loops do not determine the unknowns.
std::optional<Solution> Solve(const Loops& loops, Solution from, const Choice& choice);

}  // namespace trackedcam::crosscheck
