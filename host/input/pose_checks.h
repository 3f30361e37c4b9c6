// What the trackers' figures tell of themselves, before any photograph is looked at.

#pragma once

#include <array>
#include <vector>

#include "host/finding.h"
#include "host/input/data_fields.h"
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

}  // namespace trackedcam::host
