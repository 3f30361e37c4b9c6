#pragma once

#include <CLI/CLI.hpp>

namespace trackedcam::app {

/// Adds the command "chart", unless the program is built without it. When it runs, it stores the
/// exit status.
void AddChartCommand(CLI::App& program, int& status);

}  // namespace trackedcam::app
