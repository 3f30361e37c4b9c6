// The lens in the measures that engines share.

#pragma once

#include <array>
#include <optional>

#include "host/engines/hand_over.h"

namespace trackedcam::host {

struct EngineLens {
  std::array<int, 2> imageSize = {};  // pixels
  /// Of the part of the sensor that the picture uses: the width that was stated, and the height at
  /// which one focal length serves both directions.
  std::array<double, 2> filmbackMm = {};
  double focalLengthMm = 0;
  std::array<double, 2> fxFy = {};  // parts of the image's width and height
  /// The principal point in parts of the image from its top left corner. That corner lies half a
  /// pixel before the centre of the first pixel, from which the library counts.
  std::array<double, 2> imageCenter = {};
  double k1 = 0, k2 = 0, k3 = 0, p1 = 0, p2 = 0;  // of the Brown-Conrady model
};

/// Nothing where the sensor, the size of the image or the distortion is not known.
std::optional<EngineLens> LensOf(const HandOver& handOver);

}  // namespace trackedcam::host
