// Samples of OpenTrackIO, as a tracker sends them.

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "crosscheck/observations.h"

namespace trackedcam::host {

struct StampedPose {
  std::int64_t nanoseconds = 0;
  crosscheck::TrackerPose pose;
};

/// Reads one sample after the other, each a JSON object. The pose is the product of its transforms
/// in their order: metres, Z up, Y forward, rotated about Z (pan), then X (tilt), then Y (roll).
/// The time is timing.sampleTimestamp; a timecode counts whole frames only and is not read.
class OpenTrackIoSamples {
 public:
  /// Nothing if a number of the pose is missing.
  /// @throws InputError if it is not such a sample, has no time or is of another source than the
  ///         first; the message says what.
  std::optional<StampedPose> Read(std::string_view line);

 private:
  std::optional<std::string> source_;  // of the first sample
};

}  // namespace trackedcam::host
