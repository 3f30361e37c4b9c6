#include "host/engines/origin.h"

#include <gmock/gmock.h>

namespace trackedcam::host {
namespace {

using testing::ElementsAre;

TEST(Origin, HasDateVerdictAndUncertainty) {
  const Origin origin = {"2026-11-22 14:05:09",           Level::kDoubtful, "Shoot again.",
                         {0.5, 0.25, 1, 2, 0.001, 0.002}, {0.125, 2, 3},    {0.01, 0.02, 0.03}};
  EXPECT_THAT(
      OriginLines(origin),
      ElementsAre("Written by trackedcam " TRACKEDCAM_VERSION, "Calibrated 2026-11-22 14:05:09",
                  "Verdict doubt: Shoot again.",
                  "Standard errors of the lens: fx, fy, cx, cy 0.500, 0.250, 1.000, 2.000 px; k1, "
                  "k2 0.001000, 0.002000",
                  "Standard errors of the camera's pose: x, y, z 0.125, 2.000, 3.000 mm; about "
                  "them 0.0100, 0.0200, 0.0300 deg"));
}

TEST(Origin, LeavesOutWhatIsNotKnown) {
  EXPECT_THAT(OriginLines(Origin{"", Level::kGood, "Good.", {}, {}, {}}),
              ElementsAre("Written by trackedcam " TRACKEDCAM_VERSION, "Verdict good: Good."));
}

TEST(Origin, IsOfPrintableCharacters) {
  const std::string message = "a\nb\x7f \xc3\xbc \xe2\x80\xa8 \xff\xc3";
  EXPECT_EQ(OriginLines(Origin{"", Level::kGood, message, {}, {}, {}}).back(),
            "Verdict good: a?b? ? ? ??");
}

TEST(Origin, RefusesOnlyWhatIsCertainlyWrong) {
  const auto refusal = [](Level level) {
    return RefusalOf(Origin{"", level, "It is off.", {}, {}, {}}, "--force");
  };
  EXPECT_EQ(refusal(Level::kGood), "");
  EXPECT_EQ(refusal(Level::kDoubtful), "");
  EXPECT_EQ(refusal(Level::kWrong),
            "It is off. The result is not exported. Calibrate again, or export it with --force.");
}

TEST(Origin, SaysADoubt) {
  EXPECT_EQ(DoubtOf(Origin{"", Level::kGood, "Good.", {}, {}, {}}), "");
  EXPECT_EQ(DoubtOf(Origin{"", Level::kDoubtful, "Shoot again.", {}, {}, {}}), "Shoot again.");
  EXPECT_EQ(DoubtOf(Origin{"", Level::kWrong, "It is off.", {}, {}, {}}), "It is off.");
}

}  // namespace
}  // namespace trackedcam::host
