#pragma once

#include <string>

#include "simulator/shoot.h"

namespace trackedcam::simulator {

/// The tracker data file: a header, then one row for each photograph with the time (seconds), its
/// path, and for Tc and then Tr the position (metres) and the quaternion w, x, y, z in Base.
std::string TrackerDataText(const Shoot& shoot);

}  // namespace trackedcam::simulator
