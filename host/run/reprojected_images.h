// Where the library writes the photographs with the predicted corners.

#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace trackedcam::host {

/// The name follows the photograph's path as the data file has it, folders and all: the library
/// takes what follows the last backslash.
std::filesystem::path ReprojectedImage(const std::filesystem::path& folder,
                                       const std::string& photograph);

/// False where the name could lead out of the folder, up through "..".
bool StaysInFolder(const std::string& photograph);

/// Creates the folders that the names need, since the library creates none. Where that fails the
/// run goes on without the image. Every name must stay in the folder.
void CreateReprojectedImageFolders(const std::filesystem::path& folder,
                                   const std::vector<std::string>& photographs);

/// Those that were written whole.
std::vector<std::filesystem::path> FindReprojectedImages(
    const std::filesystem::path& folder, const std::vector<std::string>& photographs);

}  // namespace trackedcam::host
