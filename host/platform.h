// Everything of host/ that differs between operating systems.

#pragma once

namespace trackedcam::host {

/// While it lives, what the process writes to standard output goes nowhere. Below the streams, at
/// the file descriptor, so that it holds for libraries as well. Of several that live at once the
/// last one to go gives standard output back.
class SilencedStdout {
 public:
  /// @throws std::system_error
  SilencedStdout();
  ~SilencedStdout();
  SilencedStdout(const SilencedStdout&) = delete;
  SilencedStdout& operator=(const SilencedStdout&) = delete;
};

}  // namespace trackedcam::host
