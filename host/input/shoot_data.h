// The data file of a shoot, read once.

#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include "host/findings/finding.h"
#include "host/input/data_file.h"
#include "host/input/inputs.h"
#include "host/input/reported_axes.h"

namespace trackedcam::host {

/// What everything after the reading takes, so that what was checked is what is calibrated.
struct ShootData {
  std::vector<DataRow> rows;          // in reported axes and metres
  std::vector<Finding> findings;      // about the rows
  std::vector<std::size_t> leaveOut;  // indices of rows, ascending, without a pose of a tracker
  std::vector<std::size_t> excluded;  // ascending, by the user; no finding is about them
};

/// @param exclude Photographs that the user leaves out, by FindExcluded.
/// @throws InputError if the file cannot be read or converted, has no row, or does not have a
/// photograph to leave out; it says what is wrong.
ShootData ReadShootData(const std::filesystem::path& file, const TrackerFrame& frame,
                        const std::vector<std::string>& exclude = {});

/// The same for all data files of the inputs.
ShootData ReadShootData(const Inputs& inputs);

}  // namespace trackedcam::host
