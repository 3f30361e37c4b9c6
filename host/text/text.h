// Numbers as text, the same in every locale.

#pragma once

#include <cstddef>
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

/// False as well for longer forms than a character needs, and for surrogates.
bool IsUtf8(std::string_view text);

/// How many bytes the character at the front of a text has; 0 where there is none.
std::size_t CharacterLength(std::string_view text);

}  // namespace trackedcam::host
