#include "host/input/inputs.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "host/text/text.h"

namespace trackedcam::host {
namespace {

void Require(bool holds, const std::string& what) {
  if (!holds) {
    throw InputError(what);
  }
}

template <std::size_t N>
bool AreFinite(const std::array<double, N>& numbers) {
  return std::all_of(numbers.begin(), numbers.end(),
                     [](double number) { return std::isfinite(number); });
}

}  // namespace

void RequirePossible(const Inputs& inputs) {
  const auto [width, height] = inputs.sensorMm;
  Require(AreFinite(inputs.sensorMm) && width > 0 && height > 0,
          "a sensor of " + Shortest(width) + " x " + Shortest(height) +
              " cannot be: state its width and height in millimetres");
  for (const int corners : inputs.board) {
    Require(corners >= kLeastInnerCorners && corners <= kMostInnerCorners,
            "a board with " + std::to_string(corners) +
                " inner corners in one direction cannot be: it has " +
                std::to_string(kLeastInnerCorners) + " to " + std::to_string(kMostInnerCorners) +
                " of them");
  }
  Require(inputs.squareMetres > 0 && inputs.squareMetres < 1,
          "squares of " + Shortest(inputs.squareMetres) +
              " cannot be: state their edge in metres, above 0 and below 1");
  Require(!inputs.mounting || (AreFinite(inputs.mounting->rotationDegrees) &&
                               AreFinite(inputs.mounting->translationMetres)),
          "a mounting with an infinite figure, or one that is no number, cannot be");
  Require(inputs.expectedRecords.value_or(0) >= 0, "fewer than no rows cannot be expected");
}

}  // namespace trackedcam::host
