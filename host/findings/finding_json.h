#pragma once

#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "host/findings/finding.h"

namespace trackedcam::host {

/// A list: id, severity, text, advice, the values by name, and the names of the photographs.
nlohmann::ordered_json FindingsJson(const std::vector<Finding>& findings);

}  // namespace trackedcam::host
