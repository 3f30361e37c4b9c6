// What the calibrate command is told, on the command line or in a configuration file.

#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "app/options/option_values.h"
#include "host/engines/engine.h"
#include "host/input/inputs.h"

namespace trackedcam::app {

struct CalibrateOptions {
  host::Inputs inputs;  // but for the mounting
  MountingOptions mounting;
  std::filesystem::path result;  // empty: not wanted
  std::vector<const host::Engine*> exports;
  std::string parentAxes;        // of the camera in an engine; empty: those that it presumes
  std::filesystem::path truth;   // empty: not known
  std::filesystem::path report;  // empty: beside the log
  bool withoutReport = false;
  bool verbose = false;
};

/// Adds the options to the command; when it is parsed they are checked and stored, every path as an
/// absolute one.
void AddCalibrateOptions(CLI::App& command, CalibrateOptions& options);

/// Adds the command "calibrate"; when it is called, the exit status goes to status.
/// @param commandLine By which the program was called, to advise the next one.
void AddCalibrateCommand(CLI::App& program, const std::string& commandLine, int& status);

}  // namespace trackedcam::app
