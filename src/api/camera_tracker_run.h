#pragma once

#include <string>
#include <vector>

#include "api/calibration_data.h"
#include "core/result_code.h"
#include "core/run_log.h"

namespace trackedcam {

/// The second half of a calibration: solves the camera-to-tracker transform, drops outlying
/// photographs, solves again, measures and judges the result. Arguments are those of Calibration.
///
/// Appends Mean_Transform_Cam_Tc to transformCamTc, and returns the first stage's code that is not
/// 0. 0, 6, 14 and 99 leave transformCamTc filled.
ResultCode RunCameraTracker(RunLog log, CalibrationData& data,
                            const std::vector<double>& chartTrackerRotation,
                            const std::vector<double>& chartTrackerTranslation,
                            std::vector<double>& transformCamTc, const std::string& logFolder,
                            bool Flag_ModifyQuat);

}  // namespace trackedcam
