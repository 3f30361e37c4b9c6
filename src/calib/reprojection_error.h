#pragma once

#include <string>
#include <vector>

#include <opencv2/core/mat.hpp>

#include "calib/points.h"
#include "core/result_code.h"
#include "core/run_log.h"
#include "geometry/transform.h"

namespace trackedcam {

/// Predicts the corners of each photograph from the trackers and the two fixed transforms, through
/// the lens, and sets averageError to the mean over photographs of their mean distance, in pixels,
/// from the detected corners. The error so measures the whole solution, not only the lens.
///
/// With writeImages each photograph is saved with both sets of corners drawn on it, as
/// outputFolder, "//Reproject_" and the photograph's name; one that cannot be written is passed
/// over. Without it photographs are opened, not decoded. Returns 0, or 7 when imagePoints and
/// Transform_Base_Tc_all differ in length.
ResultCode Cal_Reproj_Error(RunLog log, float& averageError, const BoardTemplate& boardTemplate,
                            const std::vector<Corners>& imagePoints, const cv::Mat& cameraMatrix,
                            const cv::Mat& distortion, const Transform& Mean_Transform_Cam_Tc,
                            const TransformList& Transform_Base_Tc_all,
                            const TransformList& Transform_Tr_Base_all,
                            const Transform& Transform_Chart_Tr,
                            const std::vector<std::string>& imagePaths, bool writeImages,
                            const std::string& outputFolder);

}  // namespace trackedcam
