// The working data of one calibration, owned by the exported call.

#pragma once

#include <string>
#include <vector>

#include <opencv2/core/mat.hpp>

#include "calib/points.h"
#include "io/tracker_record.h"

namespace trackedcam {

/// Filled from the tracker data file up to the lens. Element i of each list, and row i of the two
/// pose matrices with what lies behind their end, belongs to the i-th photograph that shows the
/// board. The outlier filter then takes photographs out of imagePaths and imagePoints alone: nobody
/// reads the other lists after it.
struct CalibrationData {
  BoardTemplate boardTemplate;
  std::vector<std::string> imagePaths;
  std::vector<TrackerRecord> records;
  std::vector<Corners> imagePoints;
  std::vector<BoardTemplate> objectPoints;

  double rms = 0;  // pixels
  cv::Size imageSize;
  cv::Mat cameraMatrix;  // 3x3 doubles, pixels
  cv::Mat distortion;    // k1, k2, p1, p2, k3
  cv::Mat Rot_Cam_Chart_vec;
  cv::Mat Trans_Cam_Chart_vec;
};

}  // namespace trackedcam
