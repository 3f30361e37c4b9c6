#pragma once

#include <functional>
#include <string_view>
#include <thread>

#include "app/platform.h"

namespace trackedcam::app {

/// While it lives, standard output goes to the reader, in pieces of any length, on a thread of its
/// own: the writer never waits for a full pipe. Its end restores standard output and waits until
/// the reader has seen everything.
class CapturedStdout {
 public:
  using Reader = std::function<void(std::string_view)>;

  /// @param passOn Whether the output is to appear on standard output as well.
  CapturedStdout(Reader reader, bool passOn);
  ~CapturedStdout();
  CapturedStdout(const CapturedStdout&) = delete;
  CapturedStdout& operator=(const CapturedStdout&) = delete;

 private:
  void ReadAll();

  Reader reader_;
  bool passOn_;
  StdoutPipe pipe_;
  std::thread thread_;
};

}  // namespace trackedcam::app
