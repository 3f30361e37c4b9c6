// Numbers as text, the same in every locale; UTF-8.

#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace trackedcam::host {

/// The whole text as a number; nothing if it is not one. "nan" and "inf" are numbers.
std::optional<double> ParseNumber(std::string_view text);

/// The whole text as a whole number; nothing if it is not one.
std::optional<int> ParseInteger(std::string_view text);

/// The same text as printf's "%.*f" in the C locale.
std::string Fixed(double number, int decimals);

/// The shortest text from which the same number is read.
std::string Shortest(double number);

/// False for overlong forms and surrogates too.
bool IsUtf8(std::string_view text);

/// A line ending, a tab or another control character of ASCII, which lists of paths, logs and
/// tables cannot hold.
bool HasControlCharacter(std::string_view text);

/// The number of bytes of the text's first character; 0 if the text is empty or does not begin with
/// a character.
std::size_t CharacterLength(std::string_view text);

}  // namespace trackedcam::host
