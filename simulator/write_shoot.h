// Numbers as text, the same under every locale of the host.

#pragma once

#include <filesystem>
#include <functional>
#include <string>

#include "simulator/shoot.h"

namespace trackedcam::simulator {

/// The shortest text that reads back as this number.
std::string ToShortestText(double number);

/// With this number of decimals.
std::string ToFixedText(double number, int decimals);

/// The tracker data file: a header, then one row for each photograph with the time (seconds), its
/// path, and for Tc and then Tr the position (metres) and the quaternion w, x, y, z in Base.
std::string TrackerDataText(const Shoot& shoot);

/// The configuration file (TOML) with which the host program calibrates the shoot. Its paths are
/// relative to the shoot's folder.
std::string ConfigText(const Shoot& shoot);

/// Every true figure of the shoot as JSON. Matrices are lists of 16 numbers, row by row; lengths
/// are metres, angles degrees, and lens figures pixels unless their name says otherwise.
std::string TruthText(const Shoot& shoot);

// A shoot on disk, as a photographer would hand it over, with the truth beside it.

/// Writes photos/, tracker_data.csv, truth.json and shoot.toml. The folder is created; files of an
/// earlier shoot in it are replaced.
/// @param progress Called after each photograph with the number done and the number of all.
/// @throws std::runtime_error or std::filesystem::filesystem_error when something cannot be
/// written.
void WriteShoot(const Shoot& shoot, const std::filesystem::path& folder,
                const std::function<void(int done, int all)>& progress = {});

}  // namespace trackedcam::simulator
