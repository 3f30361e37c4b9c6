// Whole files.

#pragma once

#include <filesystem>
#include <string>

namespace trackedcam::host {

/// @throws std::runtime_error when the file cannot be read.
std::string ReadFile(const std::filesystem::path& file);

/// Replaces a file at once: whoever reads it sees the old content or the new one, and where writing
/// fails the old one stays.
/// @throws std::runtime_error when the file cannot be written.
void WriteFile(const std::filesystem::path& file, const std::string& content);

}  // namespace trackedcam::host
