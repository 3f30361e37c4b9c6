// The command "calibrate" and its options, from the command line or a configuration file.

#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "app/options/option_values.h"
#include "host/engines/engine.h"
#include "host/input/inputs.h"

namespace trackedcam::app {

struct CalibrateOptions {
  host::Inputs inputs;  // without the mounting
  MountingOptions mounting;
  std::filesystem::path result;  // empty: none
  std::vector<const host::Engine*> exports;
  bool evenIfWrong = false;      // exports a result that is certainly wrong
  std::string parentAxes;        // of the camera in an engine; empty: the engine's default
  std::filesystem::path truth;   // empty: unknown
  std::filesystem::path report;  // empty: in the folder of the run
  bool withoutReport = false;
  bool hasFullPhotographs = false;  // in the report page
  bool verbose = false;
  bool watch = false;
  std::optional<host::Accuracy> until;  // while watching; nothing: that of inputs.goodEnough
};

/// Adds the options to the command. Parsing checks and stores them, paths as absolute paths.
void AddCalibrateOptions(CLI::App& command, CalibrateOptions& options);

/// Adds the command "calibrate". When it runs, it stores the exit status.
/// @param commandLine Of this call; the advice for the next call begins with it.
void AddCalibrateCommand(CLI::App& program, const std::string& commandLine, int& status);

}  // namespace trackedcam::app
