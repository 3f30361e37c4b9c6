// Everything of the host's files that differs between operating systems.

#pragma once

#include <filesystem>
#include <string>
#include <system_error>

namespace trackedcam::host {

/// Writes a file that is not there yet, and waits until the disk has it.
/// @return What went wrong, errc::file_exists where there is one; the file is then not there, or is
///         not this one.
std::error_code WriteNewFile(const std::filesystem::path& file, const std::string& content);

/// Waits until the disk has the names of a folder. Doing nothing, or failing, is no error.
void FlushFolder(const std::filesystem::path& folder);

}  // namespace trackedcam::host
