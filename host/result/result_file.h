#pragma once

#include <filesystem>

#include "host/run/calibration_outputs.h"

namespace trackedcam::host {

/// What the engines need of a result file: normFocal, normCenter and transformCamTc.
/// @throws InputError when the file is no result.
/// @throws std::runtime_error when it is the result of a failed calibration.
CalibrationOutputs ReadResult(const std::filesystem::path& path);

}  // namespace trackedcam::host
