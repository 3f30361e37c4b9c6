// What the trackers' figures tell of themselves, before any photograph is looked at.

#pragma once

#include <array>
#include <filesystem>
#include <string>
#include <vector>

#include "host/findings/finding.h"
#include "host/input/data_file.h"

namespace trackedcam::host {

/// A row whose every figure is a number.
struct PoseRow {
  const DataRow* row = nullptr;
  std::array<TrackerPose, 2> poses = {};  // of the camera's tracker and of the chart's
};

/// Lost tracking, quaternions that are none, lengths that are not metres, poses that stand still or
/// come back.
std::vector<Finding> CheckPoses(const std::vector<PoseRow>& rows);

// What is wrong with a tracker data file. The library reads 0 for what is no number and says
// nothing; a shoot then ends far from where it went wrong.

/// What is wrong with, or doubtful in, a tracker data file; the worst first. Rows go by their line
/// in the file, counted from 1. One finding for each fault, however many rows have it.
/// @param content The whole file.
/// @param rows ReadRows of it.
std::vector<Finding> CheckData(const std::string& content, const std::vector<DataRow>& rows);

}  // namespace trackedcam::host
