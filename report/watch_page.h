// The page beside the log while a shoot is photographed, which renews itself.

#pragma once

#include <string>
#include <vector>

namespace trackedcam::report {

struct WatchView {
  bool isRunning = true;  // the page loads itself again
  bool isEnough = false;
  std::vector<std::string> progress;     // sentences
  std::vector<std::string> photographs;  // a line each, in order
};

/// Complete HTML that loads nothing.
std::string WatchPage(const WatchView& view);

}  // namespace trackedcam::report
