#include "app/run/captured_stdout.h"

#include <cstdio>
#include <iostream>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

namespace trackedcam::app {
namespace {

// What reaches standard output itself while the work runs.
template <class Work>
std::string OutputOf(Work work) {
  testing::internal::CaptureStdout();
  work();
  return testing::internal::GetCapturedStdout();
}

class CapturedStdoutTest : public testing::Test {
 protected:
  CapturedStdout::Reader Reader() {
    return [this](std::string_view piece) { read += piece; };
  }

  std::string read;
};

TEST_F(CapturedStdoutTest, TakesStreamsAndC) {
  const std::string output = OutputOf([&] {
    std::cout << "before ";
    {
      const CapturedStdout captured(Reader(), false);
      std::cout << "stream ";
      std::cout.flush();
      std::printf("printf");
    }
    std::cout << "after";
  });
  EXPECT_EQ(read, "stream printf");
  EXPECT_EQ(output, "before after");
}

TEST_F(CapturedStdoutTest, PassesOnWhenAsked) {
  const std::string output = OutputOf([&] {
    const CapturedStdout captured(Reader(), true);
    std::cout << "text";
  });
  EXPECT_EQ(read, "text");
  EXPECT_EQ(output, "text");
}

TEST_F(CapturedStdoutTest, TakesMoreThanAPipeHolds) {
  const std::string much(1 << 20, 'x');
  OutputOf([&] {
    const CapturedStdout captured(Reader(), false);
    std::cout << much;
  });
  EXPECT_EQ(read, much);
}

TEST_F(CapturedStdoutTest, EndsWithAnException) {
  const std::string output = OutputOf([&] {
    try {
      const CapturedStdout captured(Reader(), false);
      std::cout << "inside";
      throw std::runtime_error("");
    } catch (const std::runtime_error&) {
      std::cout << "after";
    }
  });
  EXPECT_EQ(read, "inside");
  EXPECT_EQ(output, "after");
}

}  // namespace
}  // namespace trackedcam::app
