#pragma once

#include <CLI/CLI.hpp>

namespace trackedcam::app {

/// Adds the command "chart", unless the program is built without it; when it is called, the exit
/// status goes to status.
void AddChartCommand(CLI::App& program, int& status);

}  // namespace trackedcam::app
