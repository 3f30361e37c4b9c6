// Numbers as text, the same whatever locale the host has set and on every system.

#pragma once

#include <string>
#include <string_view>

namespace trackedcam {

/// What printf's "%f" gives in the C locale, as the run log writes numbers. A float is widened.
/// What is no number is "nan": its sign depends on the runtime.
std::string ToText(double number);

std::string ToText(int number);

/// What atof gives in the C locale.
double ParseNumber(std::string_view text);

}  // namespace trackedcam
