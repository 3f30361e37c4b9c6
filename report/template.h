// Fills the page's template.
//
//     {{name}}             the text of a value, escaped; nothing where it is missing or null
//     {{{name}}}           the same, as it is
//     {{#name}}...{{/name}}  once for each element of a list; once for anything else that is there
//     {{^name}}...{{/name}}  where there is nothing: missing, null, false, "" or an empty list
//
// A name is looked up in the element of the innermost section first, then further out. "a.b" is b
// of a, "a.0" the first of the list a, "." the element itself.

#pragma once

#include <string>
#include <string_view>

#include <nlohmann/json_fwd.hpp>

namespace trackedcam::report {

/// @throws std::invalid_argument for a section that does not end.
std::string Render(std::string_view text, const nlohmann::ordered_json& values);

}  // namespace trackedcam::report
