// Reprojected images: photographs with the detected and the predicted corners drawn on them.

#pragma once

#include <string>

#include <opencv2/core/mat.hpp>

#include "calib/points.h"

namespace trackedcam {

/// Draws a red disc at each detected corner and a blue one at each projected corner strictly inside
/// the photograph.
void DrawCorners(cv::Mat& photograph, const Corners& detected, const Corners& projected);

/// Saves the image as folder + "//Reproject_" + the part of imagePath after the last backslash. A
/// failure is ignored.
void WriteReprojectedImage(const cv::Mat& image, const std::string& folder,
                           const std::string& imagePath);

}  // namespace trackedcam
