// The part of a result file that later photographs are tested against.

#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include <nlohmann/json_fwd.hpp>

#include "crosscheck/calibration.h"
#include "host/input/inputs.h"

namespace trackedcam::host {

struct StoredCalibration {
  crosscheck::Calibration calibration;
  TrackerFrame trackerFrame;  // of the data file of its shoot
  std::string time;           // when it was calibrated; empty if that is not known
};

/// @param inputs Of the calibration: for the axes of its data file.
nlohmann::ordered_json CalibrationJson(const crosscheck::Calibration& calibration,
                                       const Inputs& inputs);

/// What a result holds of it; without the time. Nothing if the result is of an older form, or its
/// shoot does not determine it.
/// @throws InputError if it was edited or is of another form.
std::optional<StoredCalibration> CalibrationIn(const nlohmann::json& result);

/// @throws InputError if the file is no result file, is of an older form, is cut or edited, or is
///         of a calibration that is wrong or failed; it says what to do.
StoredCalibration ReadCalibration(const std::filesystem::path& result);

}  // namespace trackedcam::host
