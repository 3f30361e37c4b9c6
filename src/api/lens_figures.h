// The lens outputs of Calibration, computed from the camera matrix.

#pragma once

#include <vector>

#include "api/calibration_data.h"
#include "core/run_log.h"

namespace trackedcam {

/// The caller's vectors, to which the values are appended; units are those of Calibration.
struct LensOutputs {
  std::vector<double>& imageSize;
  std::vector<double>& normFocal;
  std::vector<double>& normCenter;
  std::vector<double>& distortion;
  std::vector<double>& fieldOfView;
  std::vector<double>& focalLengthMm;
};

/// Appends the lens outputs and logs them. The sensor's size is in millimetres.
void HandOutLens(const RunLog& log, const CalibrationData& data, double sensorWidth,
                 double sensorHeight, LensOutputs outputs);

}  // namespace trackedcam
