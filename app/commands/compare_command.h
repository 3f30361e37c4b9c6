#pragma once

#include <CLI/CLI.hpp>

namespace trackedcam::app {

/// Adds the command "compare". When it runs, it stores the exit status.
void AddCompareCommand(CLI::App& program, int& status);

}  // namespace trackedcam::app
