#include <cmath>

#include <gtest/gtest.h>

#include "host/result/result_file.h"

namespace trackedcam::host {
namespace {

constexpr double kRadiansPerDegree = 0.017453292519943295;

// A turn about z and a shift along x and y.
std::vector<double> Transform(double degrees, double x, double y) {
  const double c = std::cos(degrees * kRadiansPerDegree);
  const double s = std::sin(degrees * kRadiansPerDegree);
  return {c, -s, 0, x, s, c, 0, y, 0, 0, 1, 0, 0, 0, 0, 1};
}

TEST(TransformDifference, IsADistanceAndAnAngle) {
  const auto difference = Difference(Transform(10, 0.1, 0.2), Transform(35, 0.103, 0.204));
  EXPECT_NEAR(difference.millimetres, 5, 1e-9);
  EXPECT_NEAR(difference.degrees, 25, 1e-9);
}

TEST(TransformDifference, IsExactForSmallAndForLargeAngles) {
  EXPECT_EQ(Difference(Transform(3, 0, 0), Transform(3, 0, 0)).degrees, 0);
  EXPECT_NEAR(Difference(Transform(0, 0, 0), Transform(1e-6, 0, 0)).degrees, 1e-6, 1e-12);
  EXPECT_NEAR(Difference(Transform(0, 0, 0), Transform(180, 0, 0)).degrees, 180, 1e-4);
}

}  // namespace
}  // namespace trackedcam::host
