// Command lines that the program prints, ready to paste.

#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "host/engines/engine.h"
#include "host/verdict/verdict.h"

namespace trackedcam::app {

/// The command line of this call. Words are quoted for a shell if they have more than letters,
/// digits and the characters of paths and options.
std::string CommandLine(int argc, const char* const* argv);

/// The same for the words after the program's name.
std::string CommandLine(const std::vector<std::string>& words);

/// The command line with an option more. Empty if there is none, or if the line has it already.
std::string WithOption(const std::string& commandLine, const std::string& option);

/// The commands that calibrate or check again as the verdict advises: with its option, and without
/// the photographs that findings ask to leave out.
std::vector<std::string> NextCalibrations(const std::string& commandLine,
                                          const host::Verdict& verdict);

/// The commands that export a good result: one for each engine in common use, or what is missing
/// for the engines to which it has been exported.
/// @param result The result file.
/// @param done Engines to which calibrate has exported.
/// @param parentAxes Of --parent-axes; empty if not given.
std::vector<std::string> ExportCommands(const std::filesystem::path& result,
                                        const std::vector<const host::Engine*>& done,
                                        const std::string& parentAxes);

}  // namespace trackedcam::app
