#pragma once

#include <array>
#include <optional>

#include <CLI/CLI.hpp>

#include "host/input/inputs.h"

namespace trackedcam::app {

struct MountingOptions {
  std::optional<std::array<double, 3>> rotation;     // degrees
  std::optional<std::array<double, 3>> translation;  // metres
  bool isReported = false;                           // in the axes that the tracking system reports
};

/// Adds --chart-rotation, --chart-translation and --mounting-axes to a group of the help.
void AddMountingOptions(CLI::App& command, MountingOptions& options, const std::string& group);

/// In the tracker's axes after the axis fix. Nothing where none is stated.
/// @throws CLI::ValidationError where only one half is.
std::optional<host::Mounting> MountingOf(const MountingOptions& options);

}  // namespace trackedcam::app
