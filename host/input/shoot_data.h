// The data file of a shoot, read once.

#pragma once

#include <cstddef>
#include <filesystem>
#include <vector>

#include "host/findings/finding.h"
#include "host/input/data_file.h"
#include "host/input/reported_axes.h"

namespace trackedcam::host {

/// What everything after the reading takes, so that what was checked is what is calibrated.
struct ShootData {
  std::vector<DataRow> rows;          // in reported axes and metres
  std::vector<Finding> findings;      // about the rows
  std::vector<std::size_t> leaveOut;  // indices of rows, ascending, without a pose of a tracker
};

/// @throws InputError if the file cannot be read or converted, or has no row; it says what is
/// wrong.
ShootData ReadShootData(const std::filesystem::path& file, const TrackerFrame& frame);

}  // namespace trackedcam::host
