#pragma once

#include <filesystem>

namespace trackedcam::host {

/// False for a picture file that is missing, empty or cut short, as on a disk that became full.
/// Looks at its beginning and its end, and decodes nothing; a format without a mark at its end is
/// whole when it is not empty.
bool IsWholePicture(const std::filesystem::path& file);

}  // namespace trackedcam::host
