#pragma once

#include <CLI/CLI.hpp>

namespace trackedcam::app {

/// Adds the command "crosscheck". When it runs, it stores the exit status.
void AddCrosscheckCommand(CLI::App& program, const std::string& commandLine, int& status);

}  // namespace trackedcam::app
