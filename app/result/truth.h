#pragma once

#include <array>
#include <filesystem>

#include "app/result/calibration_report.h"

namespace trackedcam::app {

/// What a perfect calibration of a simulated shoot would find, from the file that the simulator
/// wrote.
/// @param sensor The stated size of the sensor, millimetres, which the file does not hold.
/// @throws CLI::ValidationError when the file holds no truth.
CalibrationOutputs ReadTruth(const std::filesystem::path& path,
                             const std::array<double, 2>& sensor);

}  // namespace trackedcam::app
