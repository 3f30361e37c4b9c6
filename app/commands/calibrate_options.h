// What the calibrate command is told, on the command line or in a configuration file.

#pragma once

#include <array>
#include <filesystem>
#include <optional>
#include <vector>

#include <CLI/CLI.hpp>

#include "app/engines/engine.h"

namespace trackedcam::app {

struct CalibrateOptions {
  std::filesystem::path data;
  std::array<double, 2> sensor = {};                   // millimetres
  std::array<int, 2> board = {};                       // inner corners: columns, rows
  double square = 0;                                   // metres
  std::array<double, 3> chartTrackerRotation = {};     // degrees
  std::array<double, 3> chartTrackerTranslation = {};  // metres
  bool invertTrackerQuaternions = false;
  std::optional<int> expectedRecords;
  std::filesystem::path logFolder;
  std::filesystem::path result;  // empty: not wanted
  std::vector<const Engine*> exports;
  std::filesystem::path truth;          // empty: not known
  std::filesystem::path workingFolder;  // empty: the data file's
  bool verbose = false;
};

/// The options whose value is a path.
constexpr std::array<const char*, 6> kPathOptions = {"data",   "log-folder", "out",
                                                     "result", "truth",      "working-folder"};

/// Adds the options to the command; when it is parsed they are checked and stored, every path as an
/// absolute one.
void AddCalibrateOptions(CLI::App& command, CalibrateOptions& options);

}  // namespace trackedcam::app
