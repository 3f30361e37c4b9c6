#pragma once

#include <vector>

namespace trackedcam::host {

/// What the library fills: named as in its header, empty where it did not get so far.
struct CalibrationOutputs {
  std::vector<double> imageSize;
  std::vector<double> normFocal;
  std::vector<double> normCenter;
  std::vector<double> distortion;
  std::vector<double> transformCamTc;
  std::vector<double> fieldOfView;
  std::vector<double> focalLengthMm;
};

}  // namespace trackedcam::host
