// A continuous recording of one tracker, as it comes from a file.

#pragma once

#include <cstddef>
#include <vector>

#include "crosscheck/observations.h"

namespace trackedcam::host {

struct TimedPose {
  double seconds = 0;  // since the first stamp of the recording
  crosscheck::TrackerPose pose;
};

/// The poses of one tracker, by rising time.
struct PoseRecording {
  double firstStamp = 0;  // seconds of the recording's own clock, subtracted from all others
  std::vector<TimedPose> poses;
  std::size_t repeatedStamps = 0;  // left out: the stamp of the pose before them
  std::size_t fallingStamps = 0;   // left out: earlier than a pose before them
  std::size_t unreadable = 0;      // left out: lines with a value that is no finite number
};

}  // namespace trackedcam::host
