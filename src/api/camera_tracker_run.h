#pragma once

#include <string>
#include <vector>

#include "api/calibration_data.h"
#include "core/result_code.h"
#include "core/run_log.h"

namespace trackedcam {

/// The second half of a calibration: solves the transform between camera and tracker, removes
/// outliers, solves again, and judges the result. The arguments are those of Calibration.
/// @return The first code of a stage that is not 0, or 0. With 0, 6, 14 and 99,
///   Mean_Transform_Cam_Tc is appended to transformCamTc.
ResultCode RunCameraTracker(RunLog log, CalibrationData& data,
                            const std::vector<double>& chartTrackerRotation,
                            const std::vector<double>& chartTrackerTranslation,
                            std::vector<double>& transformCamTc, const std::string& logFolder,
                            bool Flag_ModifyQuat);

}  // namespace trackedcam
