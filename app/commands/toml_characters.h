#pragma once

#include <string>
#include <string_view>

namespace trackedcam::app {

/// The TOML parser takes it for impossible that some characters beyond ASCII stand where white
/// space may, and what it then does is undefined. All of the first plane give way to those of the
/// private plane 15, of which it has no opinion and which count as many columns. From the first
/// bytes on that are no UTF-8 the text stays as it is, as does a byte-order mark.
std::string ToTomlCharacters(std::string_view text);

/// What they were, in a part of such a text.
std::string FromTomlCharacters(std::string_view text);

}  // namespace trackedcam::app
