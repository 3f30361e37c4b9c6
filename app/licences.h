#pragma once

namespace trackedcam::app {

/// Line by line and ended by nullptr: the licence of the project, and of everything that is inside.
extern const char* const kLicences[];

}  // namespace trackedcam::app
