#pragma once

#include <vector>

namespace trackedcam::crosscheck {

/// The upper one of two in the middle. There must be a value.
double Median(std::vector<double> values);

}  // namespace trackedcam::crosscheck
