// A first solution in closed form that bad photographs do not reach.

#pragma once

#include <optional>

#include "crosscheck/evidence.h"

namespace trackedcam::crosscheck {

struct Start {
  Pose Transform_Cam_Tc;
  Pose Transform_Tr_Chart;
  double medianMetres = 0;    // between the boards as seen and as the trackers place them
  std::vector<bool> closest;  // one for each loop: the half that it fits best
};

/// The best of so many random samples of five photographs, then of the closest half again and
/// again. Nothing for fewer than three loops.
std::optional<Start> FindStart(const Loops& loops, const BoardDistance& distance, int samples);

}  // namespace trackedcam::crosscheck
