#pragma once

#include <CLI/CLI.hpp>

namespace trackedcam::app {

/// Adds the command "simulate"; when it is called, the exit status goes to status.
void AddSimulateCommand(CLI::App& program, int& status);

}  // namespace trackedcam::app
