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

// The library takes paths as UTF-8, and writes them into lines of its log.
void RequirePlainPath(const std::string& what, const std::filesystem::path& path) {
  const std::string text = path.u8string();
  Require(IsUtf8(text), "the path of the " + what + " is not UTF-8: " + text + "; rename it");
  Require(!HasControlCharacter(text),
          "the path of the " + what + " has a line ending or another control character; rename it");
}

}  // namespace

void RequirePossible(const Accuracy& goodEnough, double scaleUncertainty,
                     const std::vector<double>& atMetres) {
  const auto [mm, degrees] = goodEnough;
  Require(std::isfinite(mm) && std::isfinite(degrees) && mm > 0 && degrees > 0,
          "good enough at " + Shortest(mm) + " mm and " + Shortest(degrees) +
              " degrees: both must be above 0");
  Require(scaleUncertainty >= 0 && scaleUncertainty <= kMostScaleUncertainty,
          "scale uncertainty of " + Shortest(100 * scaleUncertainty) + " %: expected 0 to " +
              Shortest(100 * kMostScaleUncertainty) + " %");
  for (const double metres : atMetres) {
    Require(std::isfinite(metres) && metres > 0,
            "errors at " + Shortest(metres) + " m: the distance must be above 0");
  }
}

void RequirePossible(const Inputs& inputs) {
  RequirePlainPath("working folder", inputs.workingFolder);
  RequirePlainPath("log folder", inputs.logFolder);
  const auto [width, height] = inputs.sensorMm;
  Require(AreFinite(inputs.sensorMm) && width > 0 && height > 0,
          "sensor of " + Shortest(width) + " x " + Shortest(height) +
              " mm: width and height must be above 0");
  for (const int corners : inputs.board) {
    Require(corners >= kLeastInnerCorners && corners <= kMostInnerCorners,
            "board with " + std::to_string(corners) + " inner corners in one direction: expected " +
                std::to_string(kLeastInnerCorners) + " to " + std::to_string(kMostInnerCorners));
  }
  Require(
      inputs.squareMetres > 0 && inputs.squareMetres < 1,
      "square of " + Shortest(inputs.squareMetres) + " m: the edge must be above 0 and below 1 m");
  Require(!inputs.mounting || (AreFinite(inputs.mounting->rotationDegrees) &&
                               AreFinite(inputs.mounting->translationMetres)),
          "the mounting contains an infinite or NaN value");
  RequirePossible(inputs.goodEnough, inputs.scaleUncertainty, inputs.atMetres);
  Require(inputs.expectedRecords.value_or(0) >= 0,
          "the expected number of records must not be negative");
}

}  // namespace trackedcam::host
