// One row of the tracker data file: what the tracking system reported for one photograph.

#pragma once

#include <cstddef>
#include <vector>

namespace trackedcam {

/// Fifteen numbers: the time, then position and orientation of the camera's tracker (Tc) and of the
/// chart's tracker (Tr) in frame Base.
using TrackerRecord = std::vector<double>;

namespace record {

constexpr std::size_t kTcPosition = 1;     // x, y, z in metres
constexpr std::size_t kTcQuaternion = 4;   // w, x, y, z
constexpr std::size_t kTrPosition = 8;     // x, y, z in metres
constexpr std::size_t kTrQuaternion = 11;  // w, x, y, z
constexpr std::size_t kLength = 15;

}  // namespace record

}  // namespace trackedcam
