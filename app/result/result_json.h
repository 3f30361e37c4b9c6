#pragma once

#include <nlohmann/json.hpp>

#include "app/result/calibration_report.h"

namespace trackedcam::app {

/// Every figure of a run at full precision, for other programs. A figure that is not finite, or
/// that the run did not get to, is null.
nlohmann::ordered_json ResultJson(const CalibrationReport& report);

}  // namespace trackedcam::app
