// The configuration file: TOML, with the options of a command below a section with its name.

#pragma once

#include <filesystem>

#include <CLI/CLI.hpp>

namespace trackedcam::app {

/// Adds --config to the program. What the file says becomes the default of the options of all
/// commands that have been added before; its paths are relative to its folder, so that a shoot's
/// folder can be moved with the file in it.
void AddConfigFile(CLI::App& program);

/// The file that the program was given, as an absolute path; empty when there was none.
std::filesystem::path ConfigFile(const CLI::App& program);

}  // namespace trackedcam::app
