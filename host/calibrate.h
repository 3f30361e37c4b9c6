#pragma once

#include "host/report.h"

namespace trackedcam::host {

/// Calibrates a shoot in a new folder below inputs.logFolder.
/// @param listener Hears how far the library is, on another thread.
/// @throws InputError when the run cannot begin; what happens afterwards stands in the report.
Report Calibrate(const Inputs& inputs, const ProgressListener& listener);

}  // namespace trackedcam::host
