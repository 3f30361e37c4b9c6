#pragma once

#include <string>
#include <vector>

#include <opencv2/core/mat.hpp>

#include "calib/points.h"
#include "core/result_code.h"
#include "core/run_log.h"
#include "io/tracker_record.h"

namespace trackedcam {

/// Finds the chessboard in the photographs and solves the lens. Unusable photographs are removed
/// from imagePaths and records.
///
/// - rms: the reprojection error, pixels; rmsLimit: its limit, pixels.
/// - imageSize: 0 by 0 at the call; then the size of the first photograph that loads, pixels.
/// - cameraMatrix: 3x3 doubles, pixels; distortion begins with k1, k2, p1, p2, k3.
/// - Rot_Cam_Chart_vec (axis times angle, radians) and Trans_Cam_Chart_vec (metres): the chart's
///   poses in frame Cam, rows of three doubles. At the end they are views of their first
///   Num_TrackerData rows.
/// - objectPoints and imagePoints: one list of corners for each usable photograph.
/// - Num_TrackerData: lowered for each unusable photograph among the first Num_TrackerData.
///
/// The spare arguments are not used.
/// @return 0, 4 (fewer than 12 usable photographs) or 5 (rms above rmsLimit).
/// @throws cv::Exception if the views cannot be solved, or if Num_TrackerData is negative.
ResultCode Calibrate_Camera(RunLog log, double& rms, cv::Size& imageSize, cv::Mat& cameraMatrix,
                            cv::Mat& distortion, cv::Mat& Rot_Cam_Chart_vec,
                            cv::Mat& Trans_Cam_Chart_vec, std::vector<std::string>& imagePaths,
                            std::vector<TrackerRecord>& records,
                            std::vector<BoardTemplate>& objectPoints,
                            const BoardTemplate& boardTemplate, std::vector<Corners>& imagePoints,
                            int boardCols, int boardRows, int spareInteger,
                            const int& spareReference, float rmsLimit, int spareFlag,
                            int& Num_TrackerData);

}  // namespace trackedcam
