// The limits by which the library judges a run.

#pragma once

#include <optional>

#include "host/run/calibration_outputs.h"

namespace trackedcam::host {

/// Above the first a new calibration is recommended, above the second the run fails. Nothing where
/// the library has no such limit.
struct Limit {
  std::optional<double> doubt;
  double failure = 0;
};

struct Limits {
  Limit lensErrorPixels;
  std::optional<Limit> reprojectionErrorPixels;  // nothing where the image's size is not known
  Limit translationSpreadMetres;
};

/// Those of a run. That of the reprojection error grows with the height of the image.
Limits LimitsOf(const CalibrationOutputs& outputs);

}  // namespace trackedcam::host
