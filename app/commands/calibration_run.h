#pragma once

#include <cstddef>

#include "app/commands/calibrate_options.h"
#include "app/result/calibration_report.h"

namespace trackedcam::app {

/// Calls the library, which finds the photographs from the current folder, and follows it: with a
/// progress bar where standard error is a terminal, with the library's own lines when they are
/// wanted.
/// @param rows How many rows the data file has.
CalibrationReport RunCalibration(const CalibrateOptions& options, std::size_t rows);

}  // namespace trackedcam::app
