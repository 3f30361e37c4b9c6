#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "host/engines/engine.h"

namespace trackedcam::app {

/// The words as a shell takes them: in quotes where they hold more than letters, digits and the
/// signs of paths and options.
std::string CommandLine(int argc, const char* const* argv);

/// The same of words behind the program's name.
std::string CommandLine(const std::vector<std::string>& words);

/// The commands that hand a good result on, ready to paste: one for each engine that people use, or
/// what is left to do for those that have their figures already.
/// @param result The result file.
/// @param done Engines whose figures were printed with the calibration.
/// @param parentAxes As the user gave them; empty where not.
std::vector<std::string> ExportCommands(const std::filesystem::path& result,
                                        const std::vector<const host::Engine*>& done,
                                        const std::string& parentAxes);

}  // namespace trackedcam::app
