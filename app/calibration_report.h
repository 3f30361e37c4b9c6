// All that is known of a run when it has ended.

#pragma once

#include <filesystem>
#include <vector>

#include "app/run_record.h"

namespace trackedcam::app {

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

struct CalibrationReport {
  int code = 0;
  CalibrationOutputs outputs;
  RunRecord record;
  std::filesystem::path log;                  // empty when the library could not write one
  std::vector<std::filesystem::path> images;  // the reprojected ones
};

}  // namespace trackedcam::app
