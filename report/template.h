// Fills the page's template, which is written in Mustache (mustache.github.io).

#pragma once

#include <string>

#include <nlohmann/json_fwd.hpp>

namespace trackedcam::report {

/// Null, false, an empty text and an empty list leave their sections out; an unknown name is empty.
/// Values are never read as templates.
/// @throws std::invalid_argument if the template is malformed.
std::string Render(const std::string& text, const nlohmann::ordered_json& values);

}  // namespace trackedcam::report
