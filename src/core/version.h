#pragma once

#include <string>

namespace trackedcam {

/// The text in the first line of every log.
extern const std::string LibraryVersion;

}  // namespace trackedcam
