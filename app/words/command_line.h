#pragma once

#include <string>
#include <vector>

namespace trackedcam::app {

/// The words as a shell takes them: in quotes where they hold more than letters, digits and the
/// signs of paths and options.
std::string CommandLine(int argc, const char* const* argv);

/// The same of words behind the program's name.
std::string CommandLine(const std::vector<std::string>& words);

}  // namespace trackedcam::app
