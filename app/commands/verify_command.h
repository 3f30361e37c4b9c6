#pragma once

#include <CLI/CLI.hpp>

namespace trackedcam::app {

/// Adds the command "verify". When it runs, it stores the exit status.
void AddVerifyCommand(CLI::App& program, int& status);

}  // namespace trackedcam::app
