#pragma once

#include <array>
#include <filesystem>

#include "host/run/calibration_outputs.h"

namespace trackedcam::host {

/// What a perfect calibration of a simulated shoot would find, from the file that the simulator
/// wrote.
/// @param sensor The stated size of the sensor, millimetres, which the file does not hold.
/// @throws InputError when the file holds no truth.
CalibrationOutputs ReadTruth(const std::filesystem::path& path,
                             const std::array<double, 2>& sensor);

}  // namespace trackedcam::host
