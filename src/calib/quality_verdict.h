#pragma once

#include <vector>

#include <Eigen/Core>

#include "core/result_code.h"
#include "core/run_log.h"
#include "geometry/transform.h"

namespace trackedcam {

/// Judges the finished calibration by two values: normError, the reprojection error divided by the
/// image height, and the spread of the photographs' translations (metres) around that of the mean
/// transform, along the worst axis. A value passes if it equals its limit or is NaN.
/// @return 0 (good), 6 (spread too large), 14 (error too large) or 99 (recalibration recommended).
ResultCode Quality_Verdict(RunLog log, float normError, float normErrorWarning,
                           float normErrorFailure, const Transform& Mean_Transform_Cam_Tc,
                           const std::vector<Eigen::Vector3f>& translations, float spreadWarning,
                           float spreadFailure);

}  // namespace trackedcam
