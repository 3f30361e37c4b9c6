// Makes one HTML page of a result, which a browser shows without any other file.

#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "report/thumbnails.h"
#include "report/undistorted.h"

namespace trackedcam::report {

/// The page of a run, UTF-8 HTML.
/// @param result A result file. Keys that are missing, null or of the wrong type leave their place
///   on the page empty.
/// @param thumbnails Those of the entries of `photographs`, in its order. Missing ones leave their
///   place empty.
/// @param pageFolder Folder of the page. Links to images and the log are relative to it.
/// @param undistorted Of the result. Without an image its place is left out.
/// @param beside Other runs to compare with: "text", and "runs" with "name", "time", "level",
///   "pixels", "mm", "degrees"; null: none.
/// @throws std::invalid_argument if the result is not an object.
std::string Page(const nlohmann::ordered_json& result, const std::vector<Thumbnail>& thumbnails,
                 const std::filesystem::path& pageFolder,
                 const UndistortedPhotograph& undistorted = {},
                 const nlohmann::ordered_json& beside = nullptr);

}  // namespace trackedcam::report
