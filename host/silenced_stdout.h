#pragma once

namespace trackedcam::host {

/// While it exists, nothing that the process writes to standard output is shown. It works below the
/// streams, at the file descriptor, so that it holds for libraries too. If several exist at once,
/// the last one to end restores standard output.
class SilencedStdout {
 public:
  /// @throws std::system_error
  SilencedStdout();
  ~SilencedStdout();
  SilencedStdout(const SilencedStdout&) = delete;
  SilencedStdout& operator=(const SilencedStdout&) = delete;
};

}  // namespace trackedcam::host
