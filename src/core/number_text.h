// Numbers as the run log writes them.

#pragma once

#include <string>

namespace trackedcam {

/// What printf's "%f" gives in the C locale, whatever locale the host has set. A float is widened.
std::string ToText(double number);

std::string ToText(int number);

}  // namespace trackedcam
