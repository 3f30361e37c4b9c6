// A few photographs of a later day than a shoot, with what happened in between.

#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "crosscheck/observations.h"
#include "crosscheck/twist.h"
#include "simulator/lens.h"
#include "simulator/shoot_options.h"

namespace trackedcam::test {

/// What happened before the later photographs.
struct Between {
  crosscheck::Pose cameraMove = crosscheck::Pose::Identity();  // in the tracker's reported frame
  crosscheck::Pose chartMove = crosscheck::Pose::Identity();   // the same
  std::function<void(simulator::Lens&)> lens;
  int later = 5;           // photographs
  double noiseFactor = 1;  // of the trackers, in the later photographs
  double turning = 1;      // share of the chart's rotation in the later photographs
  std::uint64_t draw = 0;  // of poses and noise
};

/// A rotation about an axis and a translation along one; the directions are drawn from the seed.
crosscheck::Pose DrawMove(std::uint64_t seed, double mm, double degrees);

/// @param options Of the earlier shoot: camera, chart, mountings and trackers are the same.
std::vector<crosscheck::Photograph> LaterPhotographs(const simulator::ShootOptions& options,
                                                     double cornerNoisePixels,
                                                     const Between& between);

}  // namespace trackedcam::test
