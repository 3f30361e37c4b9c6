// A calibration on a separate thread.

#pragma once

#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>

#include "c/report_handle.h"
#include "host/input/inputs.h"
#include "host/run/run_log_reader.h"

namespace trackedcam::c {

class Run {
 public:
  /// The thread shares ownership of the run, so the caller may drop it at any time.
  static std::shared_ptr<Run> Start(const host::Inputs& inputs);

  /// Whether it has ended.
  bool IsDone() const;
  trackedcam_progress Progress() const;

  /// @return Whether it has ended.
  bool Wait(std::int32_t timeoutMs) const;

  /// Waits for progress that the caller has not seen, or for the end.
  /// @param[in,out] seen Number of the last step that the caller has seen.
  /// @return Where it is; nothing if it has ended.
  std::optional<trackedcam_progress> WaitForProgress(unsigned& seen) const;

  /// @throws Refusal before the end, or if there is no report.
  std::shared_ptr<Report> TheReport() const;

 private:
  void Work(const host::Inputs& inputs) noexcept;
  void Hear(const host::Progress& progress);

  mutable std::mutex mutex_;
  mutable std::condition_variable changed_;
  bool isDone_ = false;
  unsigned steps_ = 0;  // of progress
  trackedcam_progress progress_ = {};
  trackedcam_status status_ = TRACKEDCAM_OK;
  Message message_ = {};
  std::shared_ptr<Report> report_;
};

Handles<trackedcam_run, Run>& Runs();

}  // namespace trackedcam::c
