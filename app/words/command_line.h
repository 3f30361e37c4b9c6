#pragma once

#include <string>

namespace trackedcam::app {

/// The words as a shell takes them: in quotes where they hold more than letters, digits and the
/// signs of paths and options.
std::string CommandLine(int argc, const char* const* argv);

}  // namespace trackedcam::app
