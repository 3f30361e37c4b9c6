// The second half of Calibrate_Camera: the lens and the chart's pose in every photograph.

#pragma once

#include <vector>

#include <opencv2/core/mat.hpp>

#include "calib/points.h"
#include "core/result_code.h"
#include "core/run_log.h"

namespace trackedcam {

/// Units and shapes are those of Calibrate_Camera. Returns 0, or 5 when rms exceeds rmsLimit.
/// @throws cv::Exception when the views cannot be solved, or when Num_TrackerData is negative.
ResultCode CalibrateIntrinsics(RunLog log, double& rms, cv::Size imageSize, cv::Mat& cameraMatrix,
                               cv::Mat& distortion, cv::Mat& Rot_Cam_Chart_vec,
                               cv::Mat& Trans_Cam_Chart_vec,
                               const std::vector<BoardTemplate>& objectPoints,
                               const std::vector<Corners>& imagePoints, float rmsLimit,
                               int& Num_TrackerData);

/// Returns 0, or 5 when rms exceeds rmsLimit (pixels).
ResultCode CheckLensError(const RunLog& log, double rms, float rmsLimit);

/// Makes both lists of poses views of their first Num_TrackerData rows, after lowering that to the
/// number of rows that there are. What lies behind the views stays with their matrix.
void CutPoses(cv::Mat& Rot_Cam_Chart_vec, cv::Mat& Trans_Cam_Chart_vec, int& Num_TrackerData);

}  // namespace trackedcam
