#pragma once

#include <string_view>

namespace trackedcam::host {

/// False as well for longer forms than a character needs, and for surrogates.
bool IsUtf8(std::string_view text);

}  // namespace trackedcam::host
