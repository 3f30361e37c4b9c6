// Conversion between UTF-8, the text at the library's boundary, and wide paths.

#pragma once

#include <string>
#include <string_view>

namespace trackedcam {

/// UTF-16 where wchar_t has two bytes, UTF-32 where it has four.
/// @throws std::range_error("bad conversion") when the text is not UTF-8.
std::wstring WideFromUtf8(std::string_view text);

/// @throws std::range_error("bad conversion") when the text holds what is no character.
std::string Utf8FromWide(std::wstring_view text);

}  // namespace trackedcam
