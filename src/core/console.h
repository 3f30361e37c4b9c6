// The console: standard output, to which the library prints besides its log.

#pragma once

#include <string>

namespace trackedcam {

/// Nothing if the console is silent.
void Print(const std::string& text);
/// The same with the end of a line, and flushed.
void PrintLine(const std::string& text);

/// From now on nothing is printed: for a library that contains this one, whose hosts own standard
/// output.
void SilenceConsole() noexcept;

}  // namespace trackedcam
