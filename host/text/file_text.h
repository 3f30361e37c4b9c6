// Whole files.

#pragma once

#include <filesystem>
#include <string>

namespace trackedcam::host {

/// @throws std::runtime_error when the file cannot be read.
std::string ReadFile(const std::filesystem::path& file);

/// Replaces a file at once: whoever reads it sees the old content or the new one, also after the
/// machine or the process has been stopped at any moment. Where writing fails the old file stays.
/// The new one keeps the permissions of the old one. Of a link, it is the link that is replaced.
/// @throws std::runtime_error when the file cannot be written, or what has its name is no file.
void WriteFile(const std::filesystem::path& file, const std::string& content);

}  // namespace trackedcam::host
