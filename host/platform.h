// Everything of host/ that differs between operating systems.

#pragma once

#include <filesystem>
#include <string>
#include <system_error>

namespace trackedcam::host {

/// Writes a new file and waits until it is on the disk.
/// @return The error, errc::file_exists if there is a file of that name. After an error no new file
///         is left.
std::error_code WriteNewFile(const std::filesystem::path& file, const std::string& content);

/// Waits until the names of a folder's files are on the disk. A failure is not an error.
void FlushFolder(const std::filesystem::path& folder);

/// Whether the user may change the content of an existing file.
bool MayWrite(const std::filesystem::path& file);

/// Whether the files of a folder are those of the system: devices and the state of processes.
/// @param folder Absolute, without links.
bool IsSystemFolder(const std::filesystem::path& folder);

/// Whether the name alone makes a path that of a device, in any folder.
bool IsDevice(const std::filesystem::path& file);

// File descriptors, to silence standard output. A negative one is an error, with its cause in
// errno.

/// Negative if standard output is closed.
int StdoutDescriptor();

/// Opens a file that swallows what is written to it.
int OpenNowhere();

int DuplicateDescriptor(int descriptor);

/// Makes a descriptor lead where another one leads. False on an error.
bool ReplaceDescriptor(int descriptor, int by);

/// Does nothing for a negative one.
void CloseDescriptor(int descriptor);

}  // namespace trackedcam::host
