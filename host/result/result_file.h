// Which files this system wrote, so that a new one may replace them, and how they are read. Any
// other file with the name of an output belongs to the user and stays.

#pragma once

#include <array>
#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "host/engines/placement.h"
#include "host/run/calibration_outputs.h"

namespace trackedcam::host {

/// The result of a calibration, whatever it came to.
bool IsResultFile(const std::filesystem::path& file);

/// The page of a calibration.
bool IsReportPage(const std::filesystem::path& file);

/// A Lens File as ExportToEngine makes it, as it was written.
bool IsLensFile(const std::filesystem::path& file);

/// A file of trackedcam export that is not a Lens File: a lens for another program, or a preview.
bool IsExportFile(const std::filesystem::path& file);

/// The truth of a simulated shoot.
bool IsTruthFile(const std::filesystem::path& file);

/// The first bytes of a file, at most so many; fewer where it ends or cannot be read.
std::string BeginningOf(const std::filesystem::path& file, std::size_t count);

struct TransformDifference {
  double millimetres;  // between the translations
  double degrees;      // of the turn from one rotation to the other
};

/// Of two transforms given row by row, sixteen values each, translations in metres.
TransformDifference Difference(const std::vector<double>& a, const std::vector<double>& b);

/// What a perfect calibration of a simulated shoot would find, from the file that the simulator
/// wrote.
/// @param sensor The stated size of the sensor, millimetres, which the file does not hold.
/// @throws InputError when the file holds no truth.
CalibrationOutputs ReadTruth(const std::filesystem::path& path,
                             const std::array<double, 2>& sensor);

/// What the exports need of a result file: normFocal, normCenter and transformCamTc; where the file
/// has them also imageSize, distortion and the sensor; and its origin.
/// @throws InputError when the file is no result.
/// @throws std::runtime_error when it is the result of a failed calibration.
ExportInput ReadResult(const std::filesystem::path& path);

/// Where a result comes from. What it does not say is left out.
/// @throws std::exception when it has no code.
Origin OriginOf(const nlohmann::json& result);

/// As ExportInput::photograph.
std::filesystem::path PhotographToShow(const nlohmann::json& result);

}  // namespace trackedcam::host
