// Which files are this system's own work, so that a new one may take their place. Whatever else has
// the name of an output is somebody's, and stays.

#pragma once

#include <cstddef>
#include <filesystem>
#include <string>

namespace trackedcam::host {

/// The result of a calibration, whatever it came to.
bool IsResultFile(const std::filesystem::path& file);

/// The page of a calibration.
bool IsReportPage(const std::filesystem::path& file);

/// A Lens File as ExportToEngine makes it, as it was written.
bool IsLensFile(const std::filesystem::path& file);

/// The truth of a simulated shoot.
bool IsTruthFile(const std::filesystem::path& file);

/// The first bytes of a file, at most so many; fewer where it ends or cannot be read.
std::string BeginningOf(const std::filesystem::path& file, std::size_t count);

}  // namespace trackedcam::host
