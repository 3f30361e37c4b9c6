#include "host/verdict/limits.h"

namespace trackedcam::host {
namespace {

// The library's own figures, which its interface does not tell; a test compares them with its
// sources.
constexpr double kLensErrorLimit = 1.5;            // pixels
constexpr double kNormErrorWarning = 0.011111111;  // of the reprojection error / image height
constexpr double kNormErrorFailure = 0.016666668;
constexpr double kSpreadWarning = 0.01;  // metres
constexpr double kSpreadFailure = 0.015;

}  // namespace

Limits LimitsOf(const CalibrationOutputs& outputs) {
  Limits limits = {{std::nullopt, kLensErrorLimit}, std::nullopt, {kSpreadWarning, kSpreadFailure}};
  if (outputs.imageSize.size() == 2) {
    const double height = outputs.imageSize[1];
    limits.reprojectionErrorPixels = Limit{kNormErrorWarning * height, kNormErrorFailure * height};
  }
  return limits;
}

}  // namespace trackedcam::host
