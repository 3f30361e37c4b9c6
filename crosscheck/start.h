// A first solution in closed form, robust against bad photographs.

#pragma once

#include <optional>
#include <vector>

#include "crosscheck/evidence.h"

namespace trackedcam::crosscheck {

struct Start {
  Pose Transform_Cam_Tc;
  Pose Transform_Tr_Chart;
  double medianMetres = 0;    // between the boards as seen and as predicted from the trackers
  std::vector<bool> closest;  // one for each loop: the half that it fits best
};

/// The best of the random samples of five photographs, then repeatedly that of the closest half.
/// Nothing for fewer than three loops.
std::optional<Start> FindStart(const Loops& loops, const BoardDistance& distance, int samples);

}  // namespace trackedcam::crosscheck
