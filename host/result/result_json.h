#pragma once

#include <nlohmann/json_fwd.hpp>

#include "host/report.h"

namespace trackedcam::host {

/// The result file: every value of a calibration at full precision. A value that is not finite, or
/// that the run did not reach, is null.
nlohmann::ordered_json ResultJson(const Report& report);

}  // namespace trackedcam::host
