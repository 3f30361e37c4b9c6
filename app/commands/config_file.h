// The configuration file: TOML, with the options of a command in a section with its name.

#pragma once

#include <filesystem>

#include <CLI/CLI.hpp>

namespace trackedcam::app {

/// Adds --config to the program. The values of the file become the defaults of the options, for all
/// commands that have been added before. Its paths are relative to its folder, so that a shoot's
/// folder can be moved with the file in it.
void AddConfigFile(CLI::App& program);

/// The file of --config as an absolute path; empty without --config.
std::filesystem::path ConfigFile(const CLI::App& program);

}  // namespace trackedcam::app
