#pragma once

#include <CLI/CLI.hpp>

namespace trackedcam::app {

/// Adds the command "report". When it runs, it stores the exit status.
void AddReportCommand(CLI::App& program, int& status);

}  // namespace trackedcam::app
