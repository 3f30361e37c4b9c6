#pragma once

#include <vector>

#include <Eigen/Geometry>

#include "core/result_code.h"
#include "core/run_log.h"
#include "geometry/transform.h"

namespace trackedcam {

/// Closes the loop Cam <- Chart <- Tr <- Base <- Tc for each photograph and averages the results.
///
/// First clears Transform_Cam_Tc_all, rotations (x, y, z, w) and translations (metres), then
/// appends one element for each photograph.
/// @return 0, or 8 if the pose lists differ in length. Mean_Transform_Cam_Tc is then unchanged.
ResultCode Calculate_Transform_Cam_Tc(
    RunLog log, Transform& Mean_Transform_Cam_Tc, TransformList& Transform_Cam_Tc_all,
    std::vector<Eigen::Quaternionf>& rotations, std::vector<Eigen::Vector3f>& translations,
    const TransformList& Transform_Cam_Chart_all, const Transform& Transform_Chart_Tr,
    const TransformList& Transform_Tr_Base_all, const TransformList& Transform_Base_Tc_all);

}  // namespace trackedcam
