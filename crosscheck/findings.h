// What to report of a result, and how serious it is.

#pragma once

#include <optional>
#include <vector>

#include "crosscheck/evidence.h"
#include "crosscheck/result.h"
#include "crosscheck/solve.h"

namespace trackedcam::crosscheck {

/// With more, the shoot does not determine the mounting.
constexpr double kMostAmplification = 10;

/// What findings need besides the result.
struct FindingInputs {
  std::optional<MisreadRows> misread;
  std::optional<Solution> solution;
  std::optional<Solution> withStep;
  std::optional<Offset> result;  // of the library's transform, or of what the stated mounting gives
  std::optional<OnScreen> atChart;  // at the chart's own distance
  double chartSpreadMetres = 0;     // of the chart's positions in front of the camera
};

/// The worst first.
std::vector<Finding> FindingsOf(const CrossCheck& check, const Evidence& evidence,
                                const FindingInputs& inputs);

}  // namespace trackedcam::crosscheck
