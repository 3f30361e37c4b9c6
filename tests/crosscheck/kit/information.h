// What a shoot can show of a flaw at best, computed apart from the cross-check.

#pragma once

#include "simulator/shoot.h"

namespace trackedcam::test {

/// How many standard errors the flaw is, if everything about it is known but its size, and the
/// lens, both transforms and all poses of the chart are not. No test finds it more surely.
/// @param flawed The shoot with its flaw, without noise.
/// @param flawless The same shoot without it. Its options have the noise of the trackers.
double StandardErrorsAtBest(const simulator::Shoot& flawed, const simulator::Shoot& flawless,
                            double cornerNoisePixels);

}  // namespace trackedcam::test
