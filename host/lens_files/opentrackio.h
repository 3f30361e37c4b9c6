// A sample of OpenTrackIO with the lens and the camera's pose at its tracker.
//
// Right-handed, X right, Y forward, Z up, metres; rotations about Z (pan), then X (tilt), then
// Y (roll), each of the axes that the rotation before left behind, and positive from X to Y, from
// Y to Z and from Z to X. The image is in millimetres from its middle, x right and y down.

#pragma once

#include <string>

#include "host/engines/placement.h"

namespace trackedcam::host {

/// The default of the tracker's axes in the sample, in its reported axes.
constexpr const char* kOpenTrackIoParentAxes = "-x,z,y";

/// @throws InputError if the lens or the sensor is unknown, or if the parent axes are invalid.
/// @throws std::invalid_argument if the calibration has no rigid transform.
std::string OpenTrackIoText(const ExportInput& input);

}  // namespace trackedcam::host
