#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "host/engines/engine.h"

namespace trackedcam::app {

/// The commands that hand a good result on, ready to paste: one for each engine that people use, or
/// what is left to do for those that have their figures already.
/// @param result The result file.
/// @param done Engines whose figures were printed with the calibration.
/// @param parentAxes As the user gave them; empty where not.
std::vector<std::string> ExportCommands(const std::filesystem::path& result,
                                        const std::vector<const host::Engine*>& done,
                                        const std::string& parentAxes);

}  // namespace trackedcam::app
