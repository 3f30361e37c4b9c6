// Where the library writes the photographs with the predicted corners.

#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace trackedcam::app {

/// The name follows the photograph's path as the data file has it, folders and all: the library
/// takes what follows the last backslash.
std::filesystem::path ReprojectedImage(const std::filesystem::path& logFolder,
                                       const std::string& photograph);

/// Creates the folders that the names need, since the library creates none. Where that fails the
/// run goes on without the image.
void CreateReprojectedImageFolders(const std::filesystem::path& logFolder,
                                   const std::vector<std::string>& photographs);

/// Those that exist.
std::vector<std::filesystem::path> FindReprojectedImages(
    const std::filesystem::path& logFolder, const std::vector<std::string>& photographs);

}  // namespace trackedcam::app
