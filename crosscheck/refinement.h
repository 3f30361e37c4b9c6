// Gauss-Newton on the loops in use, the noise with it.

#pragma once

#include "crosscheck/evidence.h"
#include "crosscheck/solution.h"

namespace trackedcam::crosscheck {

/// Moves the unknowns, their covariance and the noise until nothing moves; false where the loops do
/// not determine them.
/// @param holdsNoise Leaves the noise as it is.
bool Refine(const Loops& loops, Solution& solution, bool holdsNoise);

/// What the lens does to the unknowns of a refined solution: through every photograph together.
void CarryLens(const Loops& loops, Solution& solution);

}  // namespace trackedcam::crosscheck
