// Numbers as text, the same under every locale of the host.

#pragma once

#include <string>

namespace trackedcam::simulator {

/// The shortest text that reads back as this number.
std::string ToShortestText(double number);

/// With this number of decimals.
std::string ToFixedText(double number, int decimals);

}  // namespace trackedcam::simulator
