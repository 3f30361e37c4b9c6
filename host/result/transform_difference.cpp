#include "host/result/transform_difference.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace trackedcam::host {
namespace {

constexpr double kDegreesPerRadian = 57.295779513082321;
constexpr double kMillimetresPerMetre = 1000.0;

}  // namespace

TransformDifference Difference(const std::vector<double>& a, const std::vector<double>& b) {
  double rotationSquares = 0;
  double translationSquares = 0;
  for (std::size_t i = 0; i < 12; ++i) {
    const double difference = a.at(i) - b.at(i);
    (i % 4 == 3 ? translationSquares : rotationSquares) += difference * difference;
  }
  // By the distance between the matrices: the arc cosine of a trace loses small angles.
  const double sine = std::sqrt(rotationSquares / 8);
  return {kMillimetresPerMetre * std::sqrt(translationSquares),
          2 * std::asin(std::min(sine, 1.0)) * kDegreesPerRadian};
}

}  // namespace trackedcam::host
