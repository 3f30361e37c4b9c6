// From which size on a figure is worth a word.

#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "crosscheck/evidence.h"
#include "crosscheck/misread.h"
#include "crosscheck/result.h"
#include "crosscheck/solve.h"

namespace trackedcam::crosscheck {

constexpr double kRejected = 0.001;  // a test below this speaks
constexpr double kWorthMm = 1;
constexpr double kWorthDegrees = 0.1;

inline bool IsWorth(double mm, double degrees) {
  return mm >= kWorthMm || degrees >= kWorthDegrees;
}

// Which figures are worth a word, and how grave a one.

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

// What is wrong with the shoot, its chart and its trackers. Each is nothing where all is well.

std::optional<Finding> TooLittleTurning(const CrossCheck& check);
std::optional<Finding> TrackerMoved(const CrossCheck& check);
std::optional<Finding> BadPhotographs(const CrossCheck& check, const Evidence& evidence,
                                      const Grounds& grounds);
std::optional<Finding> WrongSquareSize(const CrossCheck& check, const Grounds& grounds);
std::optional<Finding> HalvesDiffer(const CrossCheck& check);
std::optional<Finding> LensUncertain(const CrossCheck& check, const Evidence& evidence,
                                     const Grounds& grounds);
std::optional<Finding> TrackersNoisy(const CrossCheck& check);

}  // namespace trackedcam::crosscheck
