#pragma once

#include <filesystem>

#include "host/engines/hand_over.h"

namespace trackedcam::host {

/// What the engines need of a result file: normFocal, normCenter and transformCamTc; where the file
/// has them also imageSize, distortion and the sensor.
/// @throws InputError when the file is no result.
/// @throws std::runtime_error when it is the result of a failed calibration.
HandOver ReadResult(const std::filesystem::path& path);

}  // namespace trackedcam::host
