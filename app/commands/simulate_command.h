#pragma once

#include <filesystem>

#include <CLI/CLI.hpp>

#include "simulator/shoot_options.h"

namespace trackedcam::app {

struct SimulateOptions {
  std::filesystem::path folder;
  bool force = false;  // also over what is no simulated shoot
  simulator::ShootOptions shoot;
};

/// Adds the options to the command, with the simulator's own defaults.
void AddSimulateOptions(CLI::App& command, SimulateOptions& options);

/// Adds the command "simulate"; when it is called, the exit status goes to status.
void AddSimulateCommand(CLI::App& program, int& status);

}  // namespace trackedcam::app
