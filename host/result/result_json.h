#pragma once

#include <optional>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "crosscheck/result.h"
#include "host/report.h"

namespace trackedcam::host {

/// The result file: every value of a calibration at full precision. A value that is not finite, or
/// that the run did not reach, is null.
/// @param pageSeconds How long the pictures of the report page took; nothing without a page.
nlohmann::ordered_json ResultJson(const Report& report,
                                  const std::optional<double>& pageSeconds = std::nullopt);

/// A value that is not known is null.
nlohmann::ordered_json OnScreenJson(const std::vector<crosscheck::OnScreen>& onScreen);

}  // namespace trackedcam::host
