#pragma once

#include <ostream>
#include <string>

#include "host/run/run_log_reader.h"

namespace trackedcam::app {

/// The text of the bar: the stage and, where it goes through the photographs, how many are done.
std::string ProgressText(const host::Progress& progress);

/// One line on a terminal that is written over and over, and cleared at the end.
class ProgressBar {
 public:
  explicit ProgressBar(std::ostream& terminal) : terminal_(terminal) {}
  ~ProgressBar();
  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;

  void Show(const host::Progress& progress) { Draw(ProgressText(progress)); }

 private:
  void Draw(const std::string& text);

  std::ostream& terminal_;
  std::size_t width_ = 0;
};

}  // namespace trackedcam::app
