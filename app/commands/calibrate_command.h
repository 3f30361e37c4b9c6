#pragma once

#include <string>

#include <CLI/CLI.hpp>

namespace trackedcam::app {

/// Adds the command "calibrate"; when it is called, the exit status goes to status.
/// @param commandLine By which the program was called, to advise the next one.
void AddCalibrateCommand(CLI::App& program, const std::string& commandLine, int& status);

}  // namespace trackedcam::app
