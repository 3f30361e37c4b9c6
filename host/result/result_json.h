#pragma once

#include <nlohmann/json.hpp>

#include "host/report.h"

namespace trackedcam::host {

/// Every figure of a run at full precision, for other programs. A figure that is not finite, or
/// that the run did not get to, is null.
nlohmann::ordered_json ResultJson(const Report& report);

}  // namespace trackedcam::host
