#pragma once

#include <array>
#include <filesystem>
#include <optional>

#include <CLI/CLI.hpp>

#include "simulator/recording.h"

namespace trackedcam::app {

struct SimulateOptions {
  std::filesystem::path folder;
  bool force = false;  // also into a folder with other files
  simulator::ShootOptions shoot;
  bool isRecording = false;               // not a shoot
  simulator::RecordingOptions recording;  // without its shoot, delay and exposure
  std::optional<double> exposureMs;       // otherwise that of the kind
  // Of the lens, whether it is stated or the default one.
  std::array<double, 2> tangential = {};  // p1, p2
  double k3 = 0;
};

/// Adds the options to the command, with the defaults of the simulator.
void AddSimulateOptions(CLI::App& command, SimulateOptions& options);

/// Adds the command "simulate". When it runs, it stores the exit status.
void AddSimulateCommand(CLI::App& program, int& status);

}  // namespace trackedcam::app
