// Conversion between UTF-8, the encoding of the public functions, and wide paths.

#pragma once

#include <string>
#include <string_view>

namespace trackedcam {

/// Converts to UTF-16 if wchar_t has two bytes, to UTF-32 if it has four.
/// @throws std::range_error("bad conversion") if the text is not UTF-8.
std::wstring WideFromUtf8(std::string_view text);

/// @throws std::range_error("bad conversion") if the text holds an invalid character.
std::string Utf8FromWide(std::wstring_view text);

}  // namespace trackedcam
