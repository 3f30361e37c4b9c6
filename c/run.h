// A calibration on a thread of its own.

#pragma once

#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>

#include "c/report_handle.h"
#include "host/input/inputs.h"
#include "host/run/run_log.h"

namespace trackedcam::c {

class Run {
 public:
  /// The thread holds the run as well, so that it may be forgotten at any time.
  static std::shared_ptr<Run> Start(const host::Inputs& inputs, bool isSilent);

  /// Whether it has ended.
  bool IsDone() const;
  trackedcam_progress Progress() const;

  /// @return Whether it has ended.
  bool Wait(std::int32_t timeoutMs) const;

  /// Waits until it is further than it was, or has ended.
  /// @param seen What the caller knows of; becomes what is known now.
  /// @return Where it is; nothing when it has ended.
  std::optional<trackedcam_progress> WaitForProgress(unsigned& seen) const;

  /// @throws Refusal before its end, and where it gave no report.
  std::shared_ptr<Report> TheReport() const;

 private:
  void Work(const host::Inputs& inputs, bool isSilent) noexcept;
  void Hear(const host::Progress& progress);

  mutable std::mutex mutex_;
  mutable std::condition_variable changed_;
  bool isDone_ = false;
  unsigned steps_ = 0;  // that were heard of
  trackedcam_progress progress_ = {};
  trackedcam_status status_ = TRACKEDCAM_OK;
  Message message_ = {};
  std::shared_ptr<Report> report_;
};

Handles<trackedcam_run, Run>& Runs();

}  // namespace trackedcam::c
