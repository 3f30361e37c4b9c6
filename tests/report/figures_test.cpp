// Numbers and rotations as the page shows them.

#include <cmath>
#include <limits>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "report/page_view.h"
#include "report/result_values.h"

namespace trackedcam::report {
namespace {

using Json = nlohmann::ordered_json;

TEST(Fixed, RoundsAndHasATrueMinus) {
  EXPECT_EQ(Fixed(1.2345, 2), "1.23");
  EXPECT_EQ(Fixed(-1.5, 1), "\u22121.5");
  EXPECT_EQ(Fixed(-0.001, 2), "0.00");
  EXPECT_EQ(Fixed(1e6, 0), "1000000");
}

TEST(Fixed, IsADashWhereThereIsNoNumber) {
  EXPECT_EQ(Fixed(std::nullopt, 2), "\u2013");
  EXPECT_EQ(Fixed(std::numeric_limits<double>::quiet_NaN(), 2), "\u2013");
  EXPECT_EQ(Fixed(std::numeric_limits<double>::infinity(), 2), "\u2013");
}

TEST(ValueAt, IsNothingWhereThePathLeadsNowhere) {
  const Json json = {{"list", {1, "two", nullptr}}, {"text", "words"}};
  EXPECT_EQ(NumberAt(json, "/list/0"), 1.0);
  EXPECT_EQ(NumberAt(json, "/list/1"), std::nullopt);
  EXPECT_EQ(NumberAt(json, "/list/2"), std::nullopt);
  EXPECT_EQ(NumberAt(json, "/list/3"), std::nullopt);
  EXPECT_EQ(NumberAt(json, "/text/0"), std::nullopt);
  EXPECT_EQ(TextAt(json, "/text"), "words");
  EXPECT_EQ(TextAt(json, "/list"), "");
  EXPECT_TRUE(ValueAt(json, "/missing/key").is_null());
}

TEST(RotationOfAngles, TurnsAboutXThenYThenZ) {
  // Rx(90°) · Rz(90°): x goes to y of Rx, which is z.
  const Rotation rotation = RotationOfAngles({90, 0, 90});
  const Rotation expected = {0, -1, 0, 0, 0, -1, 1, 0, 0};
  for (std::size_t i = 0; i < expected.size(); ++i) {
    EXPECT_NEAR(rotation[i], expected[i], 1e-15) << i;
  }
}

TEST(TurnDegrees, IsAxisTimesAngle) {
  const auto aboutZ = TurnDegrees(RotationOfAngles({0, 0, 30}));
  EXPECT_NEAR(aboutZ[0], 0, 1e-13);
  EXPECT_NEAR(aboutZ[1], 0, 1e-13);
  EXPECT_NEAR(aboutZ[2], 30, 1e-13);
  const auto small = TurnDegrees(RotationOfAngles({1e-7, 0, 0}));
  EXPECT_NEAR(small[0], 1e-7, 1e-15);
}

TEST(TurnDegrees, IsNothingBetweenARotationAndItself) {
  const Rotation rotation = RotationOfAngles({12, -8, 5});
  for (const double part : TurnDegrees(Product(rotation, Inverse(rotation)))) {
    EXPECT_NEAR(part, 0, 1e-13);
  }
}

}  // namespace
}  // namespace trackedcam::report
