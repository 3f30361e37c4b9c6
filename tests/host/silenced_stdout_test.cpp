#include "host/silenced_stdout.h"

#include <cstdio>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

namespace trackedcam::host {
namespace {

// What reaches standard output while the work runs.
template <class Work>
std::string OutputOf(Work work) {
  testing::internal::CaptureStdout();
  work();
  return testing::internal::GetCapturedStdout();
}

TEST(SilencedStdoutTest, TakesStreamsAndC) {
  const std::string output = OutputOf([] {
    std::cout << "before ";
    {
      const SilencedStdout silenced;
      std::cout << "stream";
      std::printf("printf");
    }
    std::cout << "after";
  });
  EXPECT_EQ(output, "before after");
}

TEST(SilencedStdoutTest, EndsWithTheLastOne) {
  const std::string output = OutputOf([] {
    auto first = std::make_unique<SilencedStdout>();
    {
      const SilencedStdout second;
      first.reset();
      std::cout << "still silent";
    }
    std::cout << "after";
  });
  EXPECT_EQ(output, "after");
}

TEST(SilencedStdoutTest, EndsWithAnException) {
  const std::string output = OutputOf([] {
    try {
      const SilencedStdout silenced;
      std::cout << "inside";
      throw std::runtime_error("");
    } catch (const std::runtime_error&) {
      std::cout << "after";
    }
  });
  EXPECT_EQ(output, "after");
}

}  // namespace
}  // namespace trackedcam::host
