#include "host/verdict/verdict.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

namespace trackedcam::host {
namespace {

TEST(Verdict, HasWordsAndAdviceForEveryDocumentedCode) {
  const std::string unknown = VerdictOf(1000).words;
  for (const int code : {0, 99, 1, 2, 15, 4, 5, 7, 8, 9, 10, 11, 12, 13, 6, 14, -1}) {
    EXPECT_NE(VerdictOf(code).words, unknown) << code;
    EXPECT_NE(VerdictOf(code).advice, "") << code;
  }
}

TEST(Verdict, IsUsableForSuccessAndWarningOnly) {
  EXPECT_TRUE(IsUsable(0));
  EXPECT_TRUE(IsUsable(99));
  for (const int code : {1, 2, 4, 5, 6, 7, 13, 14, 15, -1, 1000}) {
    EXPECT_FALSE(IsUsable(code)) << code;
  }
}

TEST(Verdict, OfATransformThatIsNoNumberIsAFailure) {
  LibraryRun run;
  run.code = 0;
  run.outputs.transformCamTc.assign(16, 0.5);
  EXPECT_TRUE(IsUsable(run));
  EXPECT_EQ(VerdictOf(run).words, VerdictOf(0).words);
  for (const double number : {std::nan(""), std::numeric_limits<double>::infinity()}) {
    run.outputs.transformCamTc[5] = number;
    EXPECT_FALSE(IsUsable(run));
    EXPECT_EQ(VerdictOf(run).words, "The transform is not a number.");
  }
  run.code = 4;
  EXPECT_EQ(VerdictOf(run).words, VerdictOf(4).words);
}

}  // namespace
}  // namespace trackedcam::host
