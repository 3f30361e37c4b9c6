#pragma once

#include <filesystem>
#include <string>
#include <system_error>

#include <CLI/CLI.hpp>

namespace trackedcam::app {

/// Creates the folder of an option, and those above it, when missing.
/// @throws CLI::ValidationError when that fails.
inline void CreateFolder(const std::string& option, const std::filesystem::path& folder) {
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  if (error) {
    throw CLI::ValidationError(
        option, "cannot create the folder " + folder.u8string() + ": " + error.message());
  }
}

}  // namespace trackedcam::app
