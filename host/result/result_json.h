#pragma once

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "crosscheck/cross_check.h"
#include "host/report.h"
#include "host/run/run_log.h"

namespace trackedcam::host {

nlohmann::ordered_json MountingJson(const crosscheck::Mounting& mounting);

/// Every figure of a cross-check at full precision. What could not be found out is null.
/// @param record Of the same run, for the corners of the photographs.
nlohmann::ordered_json CrossCheckJson(const crosscheck::CrossCheck& crossCheck,
                                      const std::vector<std::string>& photographs,
                                      const RunRecord& record);

/// Every figure of a run at full precision, for other programs. A figure that is not finite, or
/// that the run did not get to, is null.
nlohmann::ordered_json ResultJson(const Report& report);

}  // namespace trackedcam::host
