#include <gtest/gtest.h>

#include "crosscheck/statistics.h"

namespace trackedcam::crosscheck {
namespace {

TEST(Median, IsInTheMiddle) {
  EXPECT_EQ(Median({7}), 7);
  EXPECT_EQ(Median({5, -1, 100}), 5);
  EXPECT_EQ(Median({4, 1, 3, 2}), 3);
}

}  // namespace
}  // namespace trackedcam::crosscheck
