// The first half of Calibrate_Camera: the chessboard's corners in every photograph.

#pragma once

#include <string>
#include <vector>

#include <opencv2/core/types.hpp>

#include "calib/points.h"
#include "core/result_code.h"
#include "core/run_log.h"
#include "io/tracker_record.h"

namespace trackedcam {

/// Appends the corners and a copy of the template for each photograph in which the board is found;
/// the others leave imagePaths and records. boardSize is (columns, rows) of inner corners.
/// Returns 0, or 4 when fewer than 12 photographs are left.
ResultCode DetectCorners(RunLog log, cv::Size& imageSize, std::vector<std::string>& imagePaths,
                         std::vector<TrackerRecord>& records,
                         std::vector<BoardTemplate>& objectPoints,
                         const BoardTemplate& boardTemplate, std::vector<Corners>& imagePoints,
                         cv::Size boardSize, int& Num_TrackerData);

/// How many times smaller than imageSize the image is on which the board is searched: 1 unless that
/// makes it at least twice as small.
float ReductionFactor(cv::Size imageSize);

/// The size of the reduced image.
cv::Size ReducedSize(cv::Size imageSize, float reduction);

/// Half the size of the window in which a corner is refined: about a quarter of a square, and odd.
cv::Size RefinementWindow(const Corners& corners, cv::Size boardSize);

/// Lowers Num_TrackerData for the unusable photograph at this index, unless the count, already
/// lowered, does not reach it.
void CountUnusablePhotograph(std::size_t index, int& Num_TrackerData);

}  // namespace trackedcam
