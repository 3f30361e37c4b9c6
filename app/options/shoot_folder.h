// The folder that a simulated shoot goes to.

#pragma once

#include <filesystem>

namespace trackedcam::app {

/// A simulated shoot may replace an earlier one, with what calibrating it has left there. It must
/// not replace a real one, whose files have the same names, nor be mixed with other files.
/// @throws CLI::ValidationError unless the folder is missing, empty or such an earlier shoot.
void RequireShootFolder(const std::filesystem::path& folder);

}  // namespace trackedcam::app
