#pragma once

#include <string>
#include <vector>

#include <opencv2/core/mat.hpp>

#include "calib/points.h"
#include "core/result_code.h"
#include "core/run_log.h"
#include "io/tracker_record.h"

namespace trackedcam {

/// Finds the chessboard in the photographs and solves the lens. Photographs that cannot be used
/// leave imagePaths and records.
///
/// rms is the reprojection error in pixels; cameraMatrix is 3x3, in pixels; distortion begins with
/// k1, k2, p1, p2, k3. Rot_Cam_Chart_vec (axis times angle, radians) and Trans_Cam_Chart_vec
/// (metres) hold the chart's pose in the camera frame, N rows of three doubles. objectPoints and
/// imagePoints hold one list of corners for each usable photograph; rmsLimit is in pixels.
/// imageSize comes in as 0 by 0 and is that of the first photograph that loads. Num_TrackerData is
/// lowered for every photograph that drops out; the poses leave as views of the first
/// Num_TrackerData rows.
/// Returns 0, 4 (fewer than 12 usable photographs) or 5 (rms above rmsLimit).
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
