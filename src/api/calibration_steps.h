// The steps of the exported call that belong to no stage.

#pragma once

#include <string>
#include <vector>

#include "api/calibration_data.h"
#include "core/result_code.h"
#include "core/run_log.h"

namespace trackedcam {

/// The board's inner corners in the chart's frame; empty for a board without rows or columns.
BoardTemplate MakeBoardTemplate(const RunLog& log, int boardCols, int boardRows, double squareSize);

/// Returns 0, or 2 when the numbers of photographs and of records differ.
ResultCode CheckRecords(const RunLog& log, const std::vector<std::string>& imagePaths,
                        const std::vector<TrackerRecord>& records);

/// Where the lens figures are appended; the units are those of Calibration.
struct LensOutputs {
  std::vector<double>& imageSize;
  std::vector<double>& normFocal;
  std::vector<double>& normCenter;
  std::vector<double>& distortion;
  std::vector<double>& fieldOfView;
  std::vector<double>& focalLengthMm;
};

/// Hands out the lens figures and logs them. The sensor's size is in millimetres.
void HandOutLens(const RunLog& log, const CalibrationData& data, double sensorWidth,
                 double sensorHeight, LensOutputs outputs);

}  // namespace trackedcam
