#pragma once

#include <CLI/CLI.hpp>

namespace trackedcam::app {

/// Adds the command "export". When it runs, it stores the exit status.
void AddExportCommand(CLI::App& program, int& status);

}  // namespace trackedcam::app
