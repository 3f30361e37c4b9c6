// What a user must hear of a cross-check, and from where on.

#pragma once

#include <optional>
#include <vector>

#include "crosscheck/cross_check.h"
#include "crosscheck/readings.h"

namespace trackedcam::crosscheck {

/// What is said beside the figures of the cross-check.
struct Beyond {
  std::optional<Reading> reading;
  double chartSpreadMetres = 0;       // of the chart's positions before the camera
  double worstLensMm = 0;             // 95 % of Transform_Cam_Tc, by the lens alone
  double worstLensDegrees = 0;
  bool lensIsLarger = false;          // than what the trackers leave uncertain
};

/// The worst first.
std::vector<Finding> FindingsOf(const CrossCheck& check, const Beyond& beyond);

/// Above it the mounting is not suggested.
constexpr double kMostAmplification = 10;

}  // namespace trackedcam::crosscheck
