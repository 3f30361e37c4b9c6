// Numbers as text, the same in every locale.

#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace trackedcam::host {

/// The number that the whole text is; "nan" and "inf" are numbers too.
std::optional<double> ParseNumber(std::string_view text);

/// The whole number that the whole text is.
std::optional<int> ParseInteger(std::string_view text);

/// What printf's "%.*f" gives in the C locale.
std::string Fixed(double number, int decimals);

/// The shortest text that reads back as the same number.
std::string Shortest(double number);

}  // namespace trackedcam::host
