// A file that a command writes.

#pragma once

#include <filesystem>
#include <string>

namespace trackedcam::app {

/// Checks the path of an option and creates the folder of the file.
/// @throws CLI::ValidationError when the path is that of a folder, or its folder cannot be created.
void PrepareOutputFile(const std::string& option, const std::filesystem::path& file);

}  // namespace trackedcam::app
