#pragma once

#include <ostream>

#include "app/result/calibration_report.h"

namespace trackedcam::app {

/// The lens in the figures that people compare, one in a row.
/// @param truth Gets a column of its own; null when it is not known.
void PrintLens(std::ostream& out, const CalibrationOutputs& found, const CalibrationOutputs* truth);

}  // namespace trackedcam::app
