#pragma once

#include <string>

#include <nlohmann/json.hpp>

namespace trackedcam::report {

/// @throws std::invalid_argument when the text is no result.
nlohmann::ordered_json ParseResult(const std::string& text);

}  // namespace trackedcam::report
