#include "app/run/log_message.h"

#include <gtest/gtest.h>

namespace trackedcam::app {
namespace {

TEST(LogMessage, FollowsTimeAndTab) {
  EXPECT_EQ(LogMessage("2026-11-21 01:02:03\tFx : 1.000000 pixel."), "Fx : 1.000000 pixel.");
}

TEST(LogMessage, MayBeEmptyAndMayHoldTabs) {
  EXPECT_EQ(LogMessage("2026-11-21 01:02:03\t"), "");
  EXPECT_EQ(LogMessage("2026-11-21 01:02:03\ta\tb"), "a\tb");
}

TEST(LogMessage, FollowsConsoleTextOnTheSameLine) {
  EXPECT_EQ(LogMessage("photos/x.jpg2026-11-21 01:02:03\tphotos/x.jpg Not exist!"),
            "photos/x.jpg Not exist!");
  EXPECT_EQ(LogMessage("a 2026-11-20 b2026-11-21 01:02:03\tc"), "c");
}

TEST(LogMessage, IsNothingWithoutTime) {
  EXPECT_EQ(LogMessage(""), std::nullopt);
  EXPECT_EQ(LogMessage("str_line:Time,Image,"), std::nullopt);
  EXPECT_EQ(LogMessage("2026-11-21 01:02:03 no tab"), std::nullopt);
  EXPECT_EQ(LogMessage("2026/11/21 01:02:03\tother form"), std::nullopt);
}

}  // namespace
}  // namespace trackedcam::app
