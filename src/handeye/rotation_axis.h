// The axis of a rotation. The outlier filter compares photographs by it.

#pragma once

#include <opencv2/core/mat.hpp>

#include "core/result_code.h"
#include "core/run_log.h"
#include "geometry/transform.h"

namespace trackedcam {

/// axis is the unit axis of the transform's rotation, 3x1 doubles; NaN without a rotation.
/// @return 0, or 9 from Norm_Vec.
ResultCode RotationAxis(RunLog log, const Transform& transform, cv::Mat& axis);

/// Divides a 3x1 vector of doubles by its length, which is summed in single precision.
/// @return 0, or 9 if the vector is not 3x1.
ResultCode Norm_Vec(RunLog log, cv::Mat& vector);

/// product is the scalar product of the axes of one photograph's transform and of the mean. It is
/// summed in single precision, so it can exceed 1.
/// @return 0, or 10 if a vector is not 3x1.
ResultCode Dot_Vec(RunLog log, float& product, const cv::Mat& Rot_Cam_Tc_vec,
                   const cv::Mat& Mean_Rot_Cam_Tc_vec);

}  // namespace trackedcam
