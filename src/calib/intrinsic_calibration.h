// The second half of Calibrate_Camera: solves the lens and the chart's pose in every photograph.

#pragma once

#include <vector>

#include <opencv2/core/mat.hpp>

#include "calib/points.h"
#include "core/result_code.h"
#include "core/run_log.h"

namespace trackedcam {

/// Units and shapes are those of Calibrate_Camera.
/// @return 0, or 5 if rms exceeds rmsLimit.
/// @throws cv::Exception if the views cannot be solved, or if Num_TrackerData is negative.
ResultCode CalibrateIntrinsics(RunLog log, double& rms, cv::Size imageSize, cv::Mat& cameraMatrix,
                               cv::Mat& distortion, cv::Mat& Rot_Cam_Chart_vec,
                               cv::Mat& Trans_Cam_Chart_vec,
                               const std::vector<BoardTemplate>& objectPoints,
                               const std::vector<Corners>& imagePoints, float rmsLimit,
                               int& Num_TrackerData);

/// @return 0, or 5 if rms exceeds rmsLimit (pixels).
ResultCode CheckLensError(const RunLog& log, double rms, float rmsLimit);

/// Makes both lists of poses views of their first Num_TrackerData rows, and lowers Num_TrackerData
/// to the number of rows if it is larger. The rows after the views stay in the underlying matrix.
void CutPoses(cv::Mat& Rot_Cam_Chart_vec, cv::Mat& Trans_Cam_Chart_vec, int& Num_TrackerData);

}  // namespace trackedcam
