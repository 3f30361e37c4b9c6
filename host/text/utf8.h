#pragma once

#include <cstddef>
#include <string_view>

namespace trackedcam::host {

/// False as well for longer forms than a character needs, and for surrogates.
bool IsUtf8(std::string_view text);

/// How many bytes the character at the front of a text has; 0 where there is none.
std::size_t CharacterLength(std::string_view text);

}  // namespace trackedcam::host
