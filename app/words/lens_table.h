#pragma once

#include <ostream>

#include "host/run/calibration_outputs.h"

namespace trackedcam::app {

/// The lens in the figures that people compare, one in a row.
/// @param truth Gets a column of its own; null when it is not known.
void PrintLens(std::ostream& out, const host::CalibrationOutputs& found,
               const host::CalibrationOutputs* truth);

}  // namespace trackedcam::app
