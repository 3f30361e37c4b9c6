// Which figures are worth a word, and how grave a one.

#pragma once

#include <vector>

#include "crosscheck/cross_check.h"
#include "crosscheck/evidence.h"
#include "crosscheck/readings.h"
#include "crosscheck/solution.h"

namespace trackedcam::crosscheck {

constexpr double kMostAmplification = 10;  // beyond it no mounting is worth passing on

/// What findings need beyond the result itself.
struct Grounds {
  std::optional<Reading> reading;
  std::optional<Solution> solution;
  std::optional<Solution> withStep;
  std::optional<Offset> result;  // the checked transform, or what the stated mounting makes of it
  std::optional<OnScreen> atChart;  // at the chart's own distance
  double chartSpreadMetres = 0;     // of the chart's positions before the camera
};

/// The worst first.
std::vector<Finding> FindingsOf(const CrossCheck& check, const Evidence& evidence,
                                const Grounds& grounds);

}  // namespace trackedcam::crosscheck
