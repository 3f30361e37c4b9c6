// Follows a run by what the library writes to standard output.

#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "app/run/run_record.h"

namespace trackedcam::app {

struct Progress {
  std::string stage;
  std::size_t done;  // photographs
  std::size_t all;   // 0 in a stage that does not go through the photographs
};

class RunProgress {
 public:
  using Listener = std::function<void(const Progress&)>;

  /// The listener hears of every stage and of every photograph that is done.
  RunProgress(std::size_t rows, Listener listener);

  /// Takes the next piece of the output, of any length.
  void Consume(std::string_view output);

  const RunRecord& Record() const { return record_; }

 private:
  void ConsumeMessage(const std::string& message);
  void FollowStages(const std::string& message);
  void RecordPhotograph(const std::string& message);
  void RecordFigure(const std::string& message);
  void RecordError(const std::string& message);
  void BeginStage(const char* stage, std::size_t photographs);
  void ShowDone(std::size_t photographs);

  std::size_t rows_;
  Listener listener_;
  std::string line_;
  bool isRawData_ = false;
  Progress progress_ = {};
  RunRecord record_;
};

}  // namespace trackedcam::app
