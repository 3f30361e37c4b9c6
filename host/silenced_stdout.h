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

/// A child process that forks from this one has none of its threads, so nothing there would end the
/// silence. Call the first before the fork, on the forking thread, then one of the others.
void HoldSilence();
void ReleaseSilence();
void EndSilenceInChild();

}  // namespace trackedcam::host
