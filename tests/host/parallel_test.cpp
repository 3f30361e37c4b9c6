#include "host/parallel.h"

#include <atomic>
#include <chrono>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace trackedcam::host {
namespace {

TEST(ForEachInParallelTest, DoesEachOnceWithAnyNumberOfThreads) {
  for (const std::size_t threads : {0, 1, 2, 7, 50}) {
    std::vector<int> calls(20, 0);
    ForEachInParallel(
        calls.size(), [&](std::size_t i) { ++calls[i]; }, threads);
    EXPECT_EQ(calls, std::vector<int>(20, 1)) << threads;
  }
  ForEachInParallel(0, [](std::size_t /*i*/) { FAIL(); });
}

TEST(ForEachInParallelTest, HasAtMostThatManyInWorkAtOnce) {
  std::atomic<int> inWork{0};
  std::atomic<int> most{0};
  ForEachInParallel(
      12,
      [&](std::size_t /*i*/) {
        const int now = ++inWork;
        int before = most;
        while (before < now && !most.compare_exchange_weak(before, now)) {
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        --inWork;
      },
      3);
  EXPECT_EQ(most, 3);
}

TEST(ForEachInParallelTest, ThrowsOnTheCallersThread) {
  std::atomic<int> calls{0};
  const auto work = [&](std::size_t i) {
    ++calls;
    if (i == 2) {
      throw std::runtime_error("no photograph");
    }
  };
  EXPECT_THROW(ForEachInParallel(1000, work, 1), std::runtime_error);
  EXPECT_EQ(calls, 3);
  EXPECT_THROW(ForEachInParallel(1000, work, 4), std::runtime_error);
}

}  // namespace
}  // namespace trackedcam::host
