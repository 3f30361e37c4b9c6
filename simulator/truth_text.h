#pragma once

#include <string>

#include "simulator/shoot.h"

namespace trackedcam::simulator {

/// Every true figure of the shoot as JSON. Matrices are lists of 16 numbers, row by row; lengths
/// are metres, angles degrees, and lens figures pixels unless their name says otherwise.
std::string TruthText(const Shoot& shoot);

}  // namespace trackedcam::simulator
