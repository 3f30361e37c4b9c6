#pragma once

#include <string>

namespace trackedcam {

/// The version text, which every exported function logs first.
extern const std::string LibraryVersion;

}  // namespace trackedcam
