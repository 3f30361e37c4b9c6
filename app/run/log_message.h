#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace trackedcam::app {

/// The message of a line "YYYY-MM-DD hh:mm:ss<tab>message" of the log; nothing for a line that the
/// library wrote to the console only. Console text without a line end may come before the time.
std::optional<std::string> LogMessage(std::string_view line);

}  // namespace trackedcam::app
