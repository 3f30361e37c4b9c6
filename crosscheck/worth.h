// From which size on a figure is worth a word.

#pragma once

namespace trackedcam::crosscheck {

constexpr double kRejected = 0.001;  // a test below this speaks
constexpr double kWorthMm = 1;
constexpr double kWorthDegrees = 0.1;

inline bool IsWorth(double mm, double degrees) {
  return mm >= kWorthMm || degrees >= kWorthDegrees;
}

}  // namespace trackedcam::crosscheck
