#pragma once

#include <CLI/CLI.hpp>

namespace trackedcam::app {

/// Adds the command "calibrate"; when it is called, the exit status goes to status.
void AddCalibrateCommand(CLI::App& program, int& status);

}  // namespace trackedcam::app
