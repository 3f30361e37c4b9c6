// The photograph with the detected and the predicted corners drawn on it.

#pragma once

#include <string>

#include <opencv2/core/mat.hpp>

#include "calib/points.h"

namespace trackedcam {

/// Draws red discs at the detected corners and blue ones at the projected corners that lie strictly
/// inside the photograph.
void DrawCorners(cv::Mat& photograph, const Corners& detected, const Corners& projected);

/// Saves the image as folder, "//Reproject_" and what follows the last backslash of imagePath. A
/// failure is passed over in silence.
void WriteReprojectedImage(const cv::Mat& image, const std::string& folder,
                           const std::string& imagePath);

}  // namespace trackedcam
