// The axis of a rotation, by which the outlier filter compares photographs.

#pragma once

#include <opencv2/core/mat.hpp>

#include "core/result_code.h"
#include "core/run_log.h"
#include "geometry/transform.h"

namespace trackedcam {

/// The unit axis of a transform's rotation, 3x1 doubles; not a number where there is no rotation.
/// Returns 0 or 9.
ResultCode RotationAxis(RunLog log, const Transform& transform, cv::Mat& axis);

/// Divides a 3x1 vector of doubles by its length, which is summed in single precision.
/// Returns 0, or 9 when the vector is not 3x1.
ResultCode Norm_Vec(RunLog log, cv::Mat& vector);

/// The product of the axes of one photograph's transform and of the mean, summed in single
/// precision, so that it can pass 1. Returns 0, or 10 when a vector is not 3x1.
ResultCode Dot_Vec(RunLog log, float& product, const cv::Mat& Rot_Cam_Tc_vec,
                   const cv::Mat& Mean_Rot_Cam_Tc_vec);

}  // namespace trackedcam
