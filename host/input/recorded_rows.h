// A shoot that a host holds in memory, as a data file.

#pragma once

#include <string>
#include <vector>

#include "host/input/data_fields.h"

namespace trackedcam::host {

/// One photograph and both trackers at that moment, in whichever axes and unit the shoot is.
struct RecordedRow {
  double timeSeconds = 0;
  std::string photograph;
  TrackerPose camera = {};  // of the tracker on the camera
  TrackerPose chart = {};   // of the tracker on the chart
};

/// @throws InputError for a name that cannot stand in a data file: one that is empty or holds a
///         comma, a line's end or a zero.
void RequireName(const std::string& photograph);

/// The content of a data file; every number in it reads back as the same one.
std::string DataText(const std::vector<RecordedRow>& rows);

}  // namespace trackedcam::host
