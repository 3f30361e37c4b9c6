#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "crosscheck/statistics.h"

namespace trackedcam::crosscheck {
namespace {

// From printed tables of the distributions.
TEST(DistributionsTest, AreThoseOfTheTables) {
  EXPECT_NEAR(ChiSquaredQuantile(0.95, 6), 12.592, 5e-4);
  EXPECT_NEAR(ChiSquaredQuantile(0.999, 6), 22.458, 5e-4);
  EXPECT_NEAR(StudentHalfWidth95(10), 2.228, 5e-4);
  EXPECT_NEAR(StudentHalfWidth95(120), 1.980, 5e-4);
  EXPECT_NEAR(StudentTail(2.228, 10), 0.05, 1e-4);
  EXPECT_NEAR(StudentTail(-2.228, 10), 0.05, 1e-4);
  // The 5 % point of F with 6 and 20 degrees of freedom is 2.60.
  EXPECT_NEAR(HotellingTail(6 * 2.60, 6, 20), 0.05, 5e-4);
}

TEST(DistributionsTest, OneElementIsStudents) {
  for (const double t : {0.3, 1.0, 4.0}) {
    EXPECT_NEAR(HotellingTail(t * t, 1, 12), StudentTail(t, 12), 1e-12);
  }
}

TEST(DistributionsTest, TakeWhatIsNoNumber) {
  const double infinity = std::numeric_limits<double>::infinity();
  EXPECT_EQ(StudentTail(infinity, 10), 0);
  EXPECT_EQ(HotellingTail(infinity, 6, 10), 0);
  EXPECT_TRUE(std::isnan(StudentTail(std::nan(""), 10)));
  EXPECT_TRUE(std::isnan(HotellingTail(std::nan(""), 6, 10)));
  EXPECT_TRUE(std::isnan(HotellingTail(-1, 6, 10)));
}

}  // namespace
}  // namespace trackedcam::crosscheck
