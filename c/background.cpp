#include "c/background.h"

#include <atomic>
#include <condition_variable>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <thread>

#include "c/platform.h"
#include "report/thumbnails.h"

namespace trackedcam::c {
namespace {

// Never destroyed: threads use it until they end.
struct Threads {
  std::mutex mutex;
  std::condition_variable ended;
  int running = 0;
};

Threads& AllThreads() {
  static auto* const threads = new Threads;
  return *threads;
}

void WaitForAll() {
  Threads& threads = AllThreads();
  std::unique_lock<std::mutex> lock(threads.mutex);
  threads.ended.wait(lock, [&] { return threads.running == 0; });
}

void Prepare() {
  StayLoaded();
  report::MakeCodecs();
}

// Counted from before the thread begins until its last step.
class Counted {
 public:
  Counted() {
    const std::lock_guard<std::mutex> lock(AllThreads().mutex);
    ++AllThreads().running;
  }
  ~Counted() {
    const std::lock_guard<std::mutex> lock(AllThreads().mutex);
    --AllThreads().running;
    AllThreads().ended.notify_all();
  }
  Counted(const Counted&) = delete;
  Counted& operator=(const Counted&) = delete;
};

}  // namespace

void HoldWhatWasMade() {
  constexpr int kMostTimes = 1000;  // by then all has been made
  static std::atomic<int> times{0};
  if (kThreadsOutliveExit && times < kMostTimes) {
    ++times;
    std::atexit(WaitForAll);
  }
}

void InBackground(std::function<void()> work) {
  static std::once_flag prepared;
  std::call_once(prepared, Prepare);
  HoldWhatWasMade();
  auto counted = std::make_shared<Counted>();
  std::thread([work = std::move(work), counted]() mutable {
    work();
    work = nullptr;  // what it holds goes before the thread counts as ended
    counted.reset();
  }).detach();
}

}  // namespace trackedcam::c
