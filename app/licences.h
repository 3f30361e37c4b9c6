#pragma once

namespace trackedcam::app {

/// The licences of the project and of its parts, line by line; nullptr at the end.
extern const char* const* const kLicences;

}  // namespace trackedcam::app
