// The first half of Calibrate_Camera: finds the chessboard's corners in every photograph.

#pragma once

#include <string>
#include <vector>

#include <opencv2/core/types.hpp>

#include "calib/points.h"
#include "core/result_code.h"
#include "core/run_log.h"
#include "io/tracker_record.h"

namespace trackedcam {

/// Appends the corners and a copy of the template for each photograph in which the board is found.
/// The other photographs are removed from imagePaths and records. boardSize is (columns, rows) of
/// inner corners.
/// @return 0, or 4 if fewer than 12 photographs remain.
ResultCode DetectCorners(RunLog log, cv::Size& imageSize, std::vector<std::string>& imagePaths,
                         std::vector<TrackerRecord>& records,
                         std::vector<BoardTemplate>& objectPoints,
                         const BoardTemplate& boardTemplate, std::vector<Corners>& imagePoints,
                         cv::Size boardSize, int& Num_TrackerData);

/// The factor by which an image is reduced for the search: to 720 rows from 1440 rows on, otherwise
/// 1.
float ReductionFactor(cv::Size imageSize);

/// The size of the reduced image.
cv::Size ReducedSize(cv::Size imageSize, float reduction);

/// Half the size of the window in which a corner is refined: about a quarter of a square, odd,
/// pixels.
cv::Size RefinementWindow(const Corners& corners, cv::Size boardSize);

/// Lowers Num_TrackerData by 1 if the index of the unusable photograph is below it. The comparison
/// is with the number that earlier unusable photographs have already lowered.
void CountUnusablePhotograph(std::size_t index, int& Num_TrackerData);

}  // namespace trackedcam
