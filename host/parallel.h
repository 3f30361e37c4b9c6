// Work on photographs on all processors. It keeps nothing between calls, so that a process may
// fork.

#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

namespace trackedcam::host {

/// As many photographs are in memory at the same time.
inline std::size_t Processors() {
  constexpr unsigned int kMost = 8;  // further ones wait for the disk, and cost memory
  return std::clamp(std::thread::hardware_concurrency(), 1U, kMost);
}

/// Calls work(i) once for each i below count, on this thread and on others, which end before it
/// returns. If the system cannot create a thread, those that there are do the work.
/// @param work Called on several threads. Two calls must not write to the same place.
/// @throws The first exception of `work`. The rest is then not begun.
template <class Work>
void ForEachInParallel(std::size_t count, const Work& work, std::size_t threads = Processors()) {
  std::atomic<std::size_t> next{0};
  std::mutex mutex;
  std::exception_ptr failure;
  const auto takeWork = [&] {
    for (std::size_t i = next++; i < count; i = next++) {
      try {
        work(i);
      } catch (...) {
        const std::lock_guard<std::mutex> lock(mutex);
        failure = failure ? failure : std::current_exception();
        next = count;
      }
    }
  };
  std::vector<std::thread> others;
  try {
    others.reserve(threads);
    while (others.size() + 1 < std::min(threads, count)) {
      others.emplace_back(takeWork);
    }
  } catch (const std::exception&) {
    // This thread does their part.
  }
  takeWork();
  for (std::thread& other : others) {
    other.join();
  }
  if (failure) {
    std::rethrow_exception(failure);
  }
}

}  // namespace trackedcam::host
