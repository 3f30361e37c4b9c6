// Values of a result as the page shows them.

#include <limits>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

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

TEST(Fixed, IsADashWithoutANumber) {
  EXPECT_EQ(Fixed(std::nullopt, 2), "\u2013");
  EXPECT_EQ(Fixed(std::numeric_limits<double>::quiet_NaN(), 2), "\u2013");
  EXPECT_EQ(Fixed(std::numeric_limits<double>::infinity(), 2), "\u2013");
}

TEST(ValueAt, IsNullForAnUnknownPath) {
  const Json json = {{"list", {1, "two", nullptr}}, {"text", "some"}};
  EXPECT_EQ(NumberAt(json, "/list/0"), 1.0);
  EXPECT_EQ(NumberAt(json, "/list/1"), std::nullopt);
  EXPECT_EQ(NumberAt(json, "/list/2"), std::nullopt);
  EXPECT_EQ(NumberAt(json, "/list/3"), std::nullopt);
  EXPECT_EQ(NumberAt(json, "/text/0"), std::nullopt);
  EXPECT_EQ(TextAt(json, "/text"), "some");
  EXPECT_EQ(TextAt(json, "/list"), "");
  EXPECT_TRUE(ValueAt(json, "/missing/key").is_null());
}

TEST(ShortName, IsTheLastPartOfAPath) {
  EXPECT_EQ(ShortName("a/b/c.jpg"), "c.jpg");
  EXPECT_EQ(ShortName("a\\c.jpg"), "c.jpg");
  EXPECT_EQ(ShortName("c.jpg"), "c.jpg");
  EXPECT_EQ(ShortName(""), "");
}

}  // namespace
}  // namespace trackedcam::report
