#pragma once

#include <filesystem>

#include "app/run/calibration_outputs.h"

namespace trackedcam::app {

/// What the engines need of a result file: normFocal, normCenter and transformCamTc.
/// @throws CLI::ValidationError when the file is no result.
/// @throws std::runtime_error when it is the result of a failed calibration.
CalibrationOutputs ReadResult(const std::filesystem::path& path);

}  // namespace trackedcam::app
