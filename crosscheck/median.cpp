#include "crosscheck/median.h"

#include <algorithm>
#include <cstddef>

namespace trackedcam::crosscheck {

double Median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

}  // namespace trackedcam::crosscheck
