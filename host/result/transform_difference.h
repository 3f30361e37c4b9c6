#pragma once

#include <vector>

namespace trackedcam::host {

struct TransformDifference {
  double millimetres;  // between the translations
  double degrees;      // of the turn from one rotation to the other
};

/// Of two transforms given row by row, sixteen values each, translations in metres.
TransformDifference Difference(const std::vector<double>& a, const std::vector<double>& b);

}  // namespace trackedcam::host
