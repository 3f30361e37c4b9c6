// Numbers as text.

#pragma once

#include <string>

namespace trackedcam::simulator {

/// The shortest text that reads back as this number, in every locale.
std::string ToShortestText(double number);

/// The number with this many decimals, in every locale.
std::string ToFixedText(double number, int decimals);

}  // namespace trackedcam::simulator
