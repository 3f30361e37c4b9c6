#pragma once

#include <CLI/CLI.hpp>

namespace trackedcam::app {

/// Adds the command "crosscheck"; when it is called, the exit status goes to status.
void AddCrosscheckCommand(CLI::App& program, int& status);

}  // namespace trackedcam::app
