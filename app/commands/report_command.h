#pragma once

#include <CLI/CLI.hpp>

namespace trackedcam::app {

/// Adds the command "report"; when it is called, the exit status goes to status.
void AddReportCommand(CLI::App& program, int& status);

}  // namespace trackedcam::app
