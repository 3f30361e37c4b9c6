// Writes a shoot to disk, as a photographer would pass it on, together with the truth.

#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "simulator/shoot.h"

namespace trackedcam::simulator {

/// Writes photos/, tracker_data.csv, truth.json, shoot.toml and simulated.txt, the list of the
/// others with a hash of each. Creates the folder, and replaces the files of an earlier shoot in
/// it; other names of such a file, by hard links, keep its content.
/// @param progress Called after each photograph with the number written and the number of all.
/// @throws std::runtime_error or std::filesystem::filesystem_error if something cannot be written.
void WriteShoot(const Shoot& shoot, const std::filesystem::path& folder,
                const std::function<void(int done, int all)>& progress = {});

/// The tracker data file: a header, then one row for each photograph: time (seconds), path, and for
/// Tc, then Tr, the position (metres) and the quaternion w, x, y, z in frame Base.
std::string TrackerDataText(const Shoot& shoot);

/// The configuration file (TOML) with which the host program calibrates the shoot. Its paths are
/// relative to the shoot's folder.
std::string ConfigText(const Shoot& shoot);

/// All true values of the shoot as JSON. Matrices are lists of 16 numbers, row by row. Lengths are
/// in metres, angles in degrees, and lens values in pixels unless their name says otherwise.
std::string TruthText(const Shoot& shoot);

}  // namespace trackedcam::simulator
