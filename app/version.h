#pragma once

namespace trackedcam::app {

/// What --version prints: the version, the commit and the libraries that the program was built
/// with.
extern const char* const kVersion;

}  // namespace trackedcam::app
