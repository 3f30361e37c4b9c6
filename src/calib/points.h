// The chessboard's inner corners, in the chart's frame and in photographs.

#pragma once

#include <vector>

#include <opencv2/core/types.hpp>

namespace trackedcam {

/// Corner positions in the chart's frame, metres, row by row with columns fastest.
using BoardTemplate = std::vector<cv::Point3f>;

/// Corner positions in one photograph, pixels, in the order of the template.
using Corners = std::vector<cv::Point2f>;

}  // namespace trackedcam
