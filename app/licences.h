#pragma once

namespace trackedcam::app {

/// Lines, ended by nullptr: the licence of the project, and of everything that is inside.
extern const char* const* const kLicences;

}  // namespace trackedcam::app
