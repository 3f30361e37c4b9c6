#include <gmock/gmock.h>

#include "simulator/write_shoot.h"
#include "support/foreign_locale.h"

namespace trackedcam::simulator {
namespace {

using testing::HasSubstr;

Shoot KnownShoot() {
  ShootOptions options;
  options.photographs = 1;
  options.sensorWidthMm = 23.5;
  options.sensorHeightMm = 15.6;
  Shoot shoot = SimulateShoot(options);
  shoot.nominalMounting = {{12, -8.25, 5}, {0.1, -0.05, 0.02}};
  return shoot;
}

constexpr const char* kKnownConfig =
    R"(# A simulated shoot. Run it with: trackedcam calibrate --config shoot.toml
[calibrate]
data = "tracker_data.csv"
sensor = "23.5x15.6"
board = "9x6"
square = 0.03
chart-rotation = "12,-8.25,5"
chart-translation = "0.1,-0.05,0.02"
invert-tracker-quaternions = false
log-folder = "log"
result = "result.json"
truth = "truth.json"
)";

TEST(ConfigTextTest, HoldsWhatTheUserKnows) {
  EXPECT_EQ(ConfigText(KnownShoot()), kKnownConfig);
}

TEST(ConfigTextTest, AsksForInversionWhenTheQuaternionsAreInverted) {
  Shoot shoot = KnownShoot();
  shoot.options.invertedQuaternions = true;
  EXPECT_THAT(ConfigText(shoot), HasSubstr("\ninvert-tracker-quaternions = true\n"));
}

TEST(ConfigTextTest, NumbersKeepAllTheirDigits) {
  Shoot shoot = KnownShoot();
  shoot.nominalMounting.anglesDegrees.x() = 1.0 / 3;
  EXPECT_THAT(ConfigText(shoot), HasSubstr("\"0.3333333333333333,-8.25,5\""));
}

TEST(ConfigTextTest, IsTheSameUnderEveryLocale) {
  const test::ForeignLocale locale;
  EXPECT_EQ(ConfigText(KnownShoot()), kKnownConfig);
}

}  // namespace
}  // namespace trackedcam::simulator
