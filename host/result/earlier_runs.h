// The other runs of a log folder, to compare a run with.

#pragma once

#include <filesystem>

#include <nlohmann/json_fwd.hpp>

namespace trackedcam::host {

/// Of the result files in the folders beside a run's, the latest twenty: "name" of the folder,
/// "time", "level", "pixels", and "mm" and "degrees" within which the transform is known with 95 %;
/// unknown values are null. Files that are no results are passed over.
/// @param result That of the run: "text" says how it compares with the best of the others.
nlohmann::ordered_json RunsBeside(const std::filesystem::path& runFolder,
                                  const nlohmann::ordered_json& result);

}  // namespace trackedcam::host
