// The chessboard's inner corners, in the chart's frame and in photographs.

#pragma once

#include <vector>

#include <opencv2/core/types.hpp>

namespace trackedcam {

/// Corner positions in frame Chart, metres, row by row.
using BoardTemplate = std::vector<cv::Point3f>;

/// Corner positions in one photograph, pixels, in the order of the template.
using Corners = std::vector<cv::Point2f>;

}  // namespace trackedcam
