#pragma once

#include <string>

#include "simulator/shoot.h"

namespace trackedcam::simulator {

/// The configuration file (TOML) with which the host program calibrates the shoot. Its paths are
/// relative to the shoot's folder.
std::string ConfigText(const Shoot& shoot);

}  // namespace trackedcam::simulator
