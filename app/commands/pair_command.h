#pragma once

#include <CLI/CLI.hpp>

namespace trackedcam::app {

/// Adds the command "pair". When it runs, it stores the exit status.
void AddPairCommand(CLI::App& program, int& status);

}  // namespace trackedcam::app
