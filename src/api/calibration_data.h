// The working data of one call of Calibration.

#pragma once

#include <string>
#include <vector>

#include <opencv2/core/mat.hpp>

#include "calib/points.h"
#include "io/tracker_record.h"

namespace trackedcam {

/// Filled stage by stage, from the tracker data file to the lens. Element i of each list and row i
/// of the two pose matrices (including the rows after the end of a view) belong to the i-th
/// photograph in which the board was found. The outlier filter removes photographs from imagePaths
/// and imagePoints only; the other lists are not read after it.
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
