// The files and folders that the commands write. No command replaces a file that it reads, or a
// file of another kind.

#pragma once

#include <filesystem>
#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

namespace trackedcam::app {

/// A file that a command writes.
struct OutputFile {
  std::string option;
  std::filesystem::path file;
  const char* kind;                                            // "a result file of trackedcam"
  std::function<bool(const std::filesystem::path&)> isOfKind;  // for an existing file
};

/// Checks the path and creates the file's folder. An existing file must be of the same kind or
/// empty.
/// @param inputs The files that the command reads.
/// @throws CLI::ValidationError if the path is that of an input, a folder, a device or a file of
///         another kind, is protected against writing, or if the folder cannot be created.
///         Standard output is always allowed.
void PrepareOutputFile(const OutputFile& output, const std::vector<std::filesystem::path>& inputs);

/// Whether an output option is "-".
bool IsStandardOutput(const std::filesystem::path& file);

/// Writes the file, or its bytes to standard output for "-".
/// @throws std::runtime_error
void WriteOutput(const std::filesystem::path& file, const std::string& content);

/// Where text for the user goes: standard output, or standard error if that gets the file.
std::ostream& TextBeside(const std::filesystem::path& file);

/// Creates the folder of an option, and those above it.
/// @throws CLI::ValidationError
void PrepareOutputFolder(const std::string& option, const std::filesystem::path& folder);

/// Checks the folder for a simulated shoot. An earlier simulated shoot may be replaced, with the
/// results of its calibrations. A real shoot must not be: its files have the same names.
/// @throws CLI::ValidationError unless the folder is missing, empty or such an earlier shoot.
void RequireShootFolder(const std::filesystem::path& folder);

/// The same for a simulated recording.
void RequireRecordingFolder(const std::filesystem::path& folder);

}  // namespace trackedcam::app
