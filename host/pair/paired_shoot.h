// What a pairing gives: the files of a shoot, and its account as JSON and in sentences.

#pragma once

#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "host/pair/pair.h"

namespace trackedcam::host {

/// What a calibration of the shoot needs besides.
struct ShootSettings {
  std::optional<std::array<double, 2>> sensorMm;                // otherwise one 36 mm wide
  std::optional<std::array<double, 3>> chartRotationDegrees;    // of the mounting
  std::optional<std::array<double, 3>> chartTranslationMetres;  // of the mounting
};

/// @throws InputError if the folder exists and is not empty.
void RequireEmpty(const std::filesystem::path& folder);

/// Writes photos/, tracker_data.csv, shoot.toml and pairing.json.
/// @param folder Empty or missing.
/// @throws std::runtime_error if a file cannot be read or written; InputError for the name of a
///         frame that a data file cannot hold, and as RequireEmpty.
void WritePairedShoot(const PairInputs& inputs, const PairReport& report,
                      const ShootSettings& settings, const std::filesystem::path& folder);

/// The content of pairing.json.
nlohmann::ordered_json PairingJson(const PairInputs& inputs, const PairReport& report);

/// The delay, the drift, the frames and the streams; one line each.
std::vector<std::string> PairingText(const PairInputs& inputs, const PairReport& report);

}  // namespace trackedcam::host
