#pragma once

#include <string>
#include <vector>

#include <opencv2/core/mat.hpp>

#include "calib/points.h"
#include "core/result_code.h"
#include "core/run_log.h"
#include "geometry/transform.h"

namespace trackedcam {

/// Predicts the corners of each photograph from the trackers, the two fixed transforms and the
/// lens. A photograph's error is the mean distance between predicted and detected corners;
/// averageError is the mean over the photographs, in pixels. It measures the whole solution, not
/// only the lens.
///
/// With writeImages, saves each photograph with both sets of corners (see WriteReprojectedImage).
/// Without it, photographs are opened but not decoded.
/// @return 0, or 7 if imagePoints and Transform_Base_Tc_all differ in length.
ResultCode Cal_Reproj_Error(RunLog log, float& averageError, const BoardTemplate& boardTemplate,
                            const std::vector<Corners>& imagePoints, const cv::Mat& cameraMatrix,
                            const cv::Mat& distortion, const Transform& Mean_Transform_Cam_Tc,
                            const TransformList& Transform_Base_Tc_all,
                            const TransformList& Transform_Tr_Base_all,
                            const Transform& Transform_Chart_Tr,
                            const std::vector<std::string>& imagePaths, bool writeImages,
                            const std::string& outputFolder);

}  // namespace trackedcam
