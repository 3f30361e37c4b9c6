#pragma once

#include <CLI/CLI.hpp>

namespace trackedcam::app {

/// Adds the command "export"; when it is called, the exit status goes to status.
void AddExportCommand(CLI::App& program, int& status);

}  // namespace trackedcam::app
