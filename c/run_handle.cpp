#include "c/run_handle.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

#include "c/platform.h"
#include "c/shoot_handle.h"
#include "host/calibrate.h"
#include "report/thumbnails.h"

namespace trackedcam::c {
namespace {

// Counts the runs that have not ended. Never destroyed: their threads use it to the end.
class RunningRuns {
 public:
  static RunningRuns& Get() {
    static auto* const runs = new RunningRuns;
    return *runs;
  }

  void Add(int count) {
    const std::lock_guard<std::mutex> lock(mutex_);
    count_ += count;
    changed_.notify_all();
  }

  void WaitForAll() {
    std::unique_lock<std::mutex> lock(mutex_);
    changed_.wait(lock, [this] { return count_ == 0; });
  }

  void Hold() { mutex_.lock(); }
  void Release() { mutex_.unlock(); }

  // A child process has none of the threads of its parent.
  void ForgetInChild() {
    count_ = 0;
    mutex_.unlock();
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  int count_ = 0;
};

// The end of the process must wait for runs before it destroys static objects that they use. It
// calls the functions of atexit and the destructors of static objects in the reverse order of
// registration and construction, so all that a run uses is made first.
void PrepareProcess() {
  StayLoaded();
  report::PrepareImageLibrary();
  AroundForks([] { RunningRuns::Get().Hold(); }, [] { RunningRuns::Get().Release(); },
              [] { RunningRuns::Get().ForgetInChild(); });
  if (kThreadsOutliveExit) {
    std::atexit([] { RunningRuns::Get().WaitForAll(); });
  }
}

/// Does the work on a separate, detached thread.
/// @param work Must not throw.
/// @throws std::system_error if the system cannot create a thread.
void InBackground(std::function<void()> work) {
  static std::once_flag prepared;
  std::call_once(prepared, PrepareProcess);
  // Counted from before the thread starts until after `work` and what it holds are destroyed.
  RunningRuns::Get().Add(1);
  std::shared_ptr<void> counted(nullptr, [](void*) { RunningRuns::Get().Add(-1); });
  std::thread([work = std::move(work), counted = std::move(counted)]() mutable {
    work();
    work = nullptr;
    counted.reset();
  }).detach();
}

}  // namespace

std::shared_ptr<Run> Run::Start(const host::Inputs& inputs) {
  auto run = std::make_shared<Run>();
  InBackground([run, inputs] { run->Work(inputs); });
  return run;
}

void Run::Work(const host::Inputs& inputs) noexcept {
  std::shared_ptr<Report> report;
  Message message = {};
  const trackedcam_status status = Guarded(message, [&] {
    report = std::make_shared<Report>(
        host::Calibrate(inputs, host::ReadShootData(inputs),
                        [this](const host::Progress& progress) { Hear(progress); }),
        true);
  });
  const std::lock_guard<std::mutex> lock(mutex_);
  status_ = status;
  message_ = message;
  report_ = std::move(report);
  isDone_ = true;
  changed_.notify_all();
}

void Run::Hear(const host::Progress& progress) {
  const std::lock_guard<std::mutex> lock(mutex_);
  progress_ = {};
  const std::size_t length = std::min(progress.stage.size(), sizeof(progress_.stage) - 1);
  std::copy_n(progress.stage.begin(), length, progress_.stage);
  progress_.photographs_done = static_cast<std::int32_t>(progress.done);
  progress_.photographs_in_all = static_cast<std::int32_t>(progress.all);
  ++steps_;
  changed_.notify_all();
}

bool Run::IsDone() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return isDone_;
}

trackedcam_progress Run::Progress() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return progress_;
}

bool Run::Wait(std::int32_t timeoutMs) const {
  std::unique_lock<std::mutex> lock(mutex_);
  const auto isDone = [this] { return isDone_; };
  if (timeoutMs >= 0) {
    return changed_.wait_for(lock, std::chrono::milliseconds(timeoutMs), isDone);
  }
  changed_.wait(lock, isDone);
  return true;
}

std::optional<trackedcam_progress> Run::WaitForProgress(unsigned& seen) const {
  std::unique_lock<std::mutex> lock(mutex_);
  changed_.wait(lock, [&] { return isDone_ || steps_ != seen; });
  if (steps_ == seen) {
    return std::nullopt;
  }
  seen = steps_;
  return progress_;
}

std::shared_ptr<Report> Run::TheReport() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (!isDone_) {
    throw Refusal(TRACKEDCAM_NOT_DONE, "The run has not ended.");
  }
  if (status_ != TRACKEDCAM_OK) {
    throw Refusal(status_, message_.text.data());
  }
  return report_;
}

Handles<trackedcam_run, Run>& Runs() {
  static auto* const runs = new Handles<trackedcam_run, Run>("run");
  return *runs;
}

namespace {

std::shared_ptr<Run> Started(trackedcam_shoot* shoot, const trackedcam_settings* settings) {
  const auto rows = Shoots().Get(shoot);
  RequireSettings(settings);
  return Run::Start(InputsOf(*rows, *settings));
}

}  // namespace

}  // namespace trackedcam::c

using namespace trackedcam::c;

trackedcam_status trackedcam_calibrate(trackedcam_shoot* shoot, const trackedcam_settings* settings,
                                       trackedcam_progress_callback progress, void* user,
                                       trackedcam_report** report) {
  return Guarded([&] {
    RequirePointer(report, "report");
    const std::shared_ptr<Run> run = Started(shoot, settings);
    unsigned seen = 0;
    while (const auto step = run->WaitForProgress(seen)) {
      if (progress != nullptr) {
        progress(&*step, user);
      }
    }
    *report = Reports().Add(run->TheReport());
  });
}

trackedcam_status trackedcam_start(trackedcam_shoot* shoot, const trackedcam_settings* settings,
                                   trackedcam_run** run) {
  return Guarded([&] {
    RequirePointer(run, "run");
    *run = Runs().Add(Started(shoot, settings));
  });
}

trackedcam_status trackedcam_run_poll(trackedcam_run* run, int32_t* is_done,
                                      trackedcam_progress* progress, size_t progress_size) {
  return Guarded([&] {
    const auto asked = Runs().Get(run);
    RequirePointer(is_done, "is_done");
    if (progress != nullptr) {
      RequireSize(progress_size, sizeof(trackedcam_progress), "progress");
      *progress = asked->Progress();
    }
    *is_done = asked->IsDone() ? 1 : 0;
  });
}

trackedcam_status trackedcam_run_wait(trackedcam_run* run, int32_t timeout_ms, int32_t* is_done) {
  return Guarded([&] {
    const auto asked = Runs().Get(run);
    RequirePointer(is_done, "is_done");
    *is_done = asked->Wait(timeout_ms) ? 1 : 0;
  });
}

trackedcam_status trackedcam_run_report(trackedcam_run* run, trackedcam_report** report) {
  return Guarded([&] {
    const auto asked = Runs().Get(run);
    RequirePointer(report, "report");
    *report = Reports().Add(asked->TheReport());
  });
}

trackedcam_status trackedcam_run_free(trackedcam_run* run) {
  return Guarded([&] { Runs().Free(run); });
}

trackedcam_status trackedcam_crosscheck(const char* log_file, const trackedcam_settings* settings,
                                        trackedcam_report** report) {
  return Guarded([&] {
    const std::string log = RequireText(log_file, "log_file");
    RequirePointer(report, "report");
    if (settings != nullptr) {
      RequireSettings(settings);
    }
    const auto mounting = settings == nullptr ? std::nullopt : MountingOf(*settings);
    const auto goodEnough =
        settings == nullptr ? trackedcam::host::Accuracy() : GoodEnoughOf(*settings);
    const double scaleUncertainty = settings == nullptr
                                        ? trackedcam::host::Inputs().scaleUncertainty
                                        : ScaleUncertaintyOf(*settings);
    const auto exclude = settings == nullptr ? std::vector<std::string>() : ExcludeOf(*settings);
    const auto atMetres = settings == nullptr ? std::vector<double>()
                                              : AtMetresOf(settings->at_m, settings->at_count);
    *report = Reports().Add(std::make_shared<Report>(
        trackedcam::host::CheckLog(std::filesystem::absolute(std::filesystem::u8path(log)),
                                   mounting, goodEnough, scaleUncertainty, exclude, atMetres),
        false));
  });
}
