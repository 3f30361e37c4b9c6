#include <gtest/gtest.h>

#include "app/platform.h"
#include "support/platform.h"

namespace trackedcam::app {
namespace {

TEST(HoldBlasToOneThread, HoldsWhateverTheMachineHasInstalled) {
  test::SetBlasThreads(2);  // with a BLAS without threads it stays at one
  HoldBlasToOneThread();
  EXPECT_EQ(test::BlasThreads(), 1);
}

}  // namespace
}  // namespace trackedcam::app
