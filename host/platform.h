// Everything of host/ that differs between operating systems.

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

/// While it lives, what the process writes to standard output goes nowhere. Below the streams, at
/// the file descriptor, so that it holds for libraries as well. Of several that live at once the
/// last one to go gives standard output back.
class SilencedStdout {
 public:
  /// @throws std::system_error
  SilencedStdout();
  ~SilencedStdout();
  SilencedStdout(const SilencedStdout&) = delete;
  SilencedStdout& operator=(const SilencedStdout&) = delete;
};

}  // namespace trackedcam::host
