// Finds what is wrong with a tracker data file before any photograph is read. The library reads 0
// for what is not a number and reports nothing; the result is then wrong without a reason.

#pragma once

#include <array>
#include <filesystem>
#include <string>
#include <vector>

#include "host/findings/finding.h"
#include "host/input/data_file.h"

namespace trackedcam::host {

/// A row in which every value of the poses is a number.
struct PoseRow {
  const DataRow* row = nullptr;
  std::array<TrackerPose, 2> poses = {};  // of the camera's tracker and of the chart's
};

/// Lost tracking, zero quaternions, a wrong length unit, frozen or repeated poses.
std::vector<Finding> CheckPoses(const std::vector<PoseRow>& rows);

/// All faults of a tracker data file, the worst first; one finding for each fault, however many
/// rows have it.
/// @param content The whole file.
/// @param rows ReadRows of it.
std::vector<Finding> CheckData(const std::string& content, const std::vector<DataRow>& rows);

}  // namespace trackedcam::host
