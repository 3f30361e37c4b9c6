// Everything of the program that differs between operating systems.

#pragma once

#include <cstdio>

namespace trackedcam::app {

bool IsTerminal(std::FILE* stream);

/// While it lives, what the process writes to standard output goes nowhere. Below the streams, at
/// the file descriptor, so that it holds for libraries as well.
class SilencedStdout {
 public:
  /// @throws std::system_error
  SilencedStdout();
  ~SilencedStdout();
  SilencedStdout(const SilencedStdout&) = delete;
  SilencedStdout& operator=(const SilencedStdout&) = delete;

 private:
  int original_;
};

}  // namespace trackedcam::app
