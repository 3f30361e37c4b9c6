#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <system_error>
#include <vector>

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

// A file that a command writes. Nothing of a user's is ever lost by it: neither what the command
// reads nor what another program wrote.

struct OutputFile {
  std::string option;
  std::filesystem::path file;
  const char* kind;                                         // "the result of a calibration"
  std::function<bool(const std::filesystem::path&)> isOwn;  // whether a file is of that kind
};

/// The same file, be it by other names, through links, or where there is none yet.
bool IsSameFile(const std::filesystem::path& a, const std::filesystem::path& b);

/// Checks the path of an option and creates the folder of the file. An empty file may be replaced:
/// nothing is lost with it.
/// @param inputs What the command reads.
/// @throws CLI::ValidationError when the path is that of an input, of a folder, of a device, or of
///         a file that is not of the kind, or when its folder cannot be created.
void PrepareOutputFile(const OutputFile& output, const std::vector<std::filesystem::path>& inputs);

// The folder that a simulated shoot goes to.

/// A simulated shoot may replace an earlier one, with what calibrating it has left there. It must
/// not replace a real one, whose files have the same names, nor be mixed with other files.
/// @throws CLI::ValidationError unless the folder is missing, empty or such an earlier shoot.
void RequireShootFolder(const std::filesystem::path& folder);

}  // namespace trackedcam::app
