#pragma once

#include <array>
#include <optional>
#include <string>

#include "host/run/calibration_outputs.h"

namespace trackedcam::host {

/// What an engine is handed.
struct HandOver {
  CalibrationOutputs calibration;
  std::optional<std::array<double, 2>> sensorMm;  // nothing: not known, as in an old result file
  std::string parentAxes;  // as ParseParentAxes takes them; empty: those that the engine presumes
};

}  // namespace trackedcam::host
