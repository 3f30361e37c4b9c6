// A shoot on disk, as a photographer would hand it over, with the truth beside it.

#pragma once

#include <filesystem>
#include <functional>

#include "simulator/shoot.h"

namespace trackedcam::simulator {

/// Writes photos/, tracker_data.csv, truth.json and shoot.toml. The folder is created; files of an
/// earlier shoot in it are replaced.
/// @param progress Called after each photograph with the number done and the number of all.
/// @throws std::runtime_error or std::filesystem::filesystem_error when something cannot be
/// written.
void WriteShoot(const Shoot& shoot, const std::filesystem::path& folder,
                const std::function<void(int done, int all)>& progress = {});

}  // namespace trackedcam::simulator
