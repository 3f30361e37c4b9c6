#include "simulator/mounting.h"

#include <gtest/gtest.h>

namespace trackedcam::simulator {
namespace {

TEST(MountingTest, TurnsAboutXThenYThenZ) {
  const Mounting mounting = {{30, -90, 90}, {1, 2, 3}};
  const double c = std::sqrt(0.75);
  Eigen::Matrix3d aboutX;
  aboutX << 1, 0, 0, 0, c, -0.5, 0, 0.5, c;
  Eigen::Matrix3d aboutY;
  aboutY << 0, 0, -1, 0, 1, 0, 1, 0, 0;
  Eigen::Matrix3d aboutZ;
  aboutZ << 0, -1, 0, 1, 0, 0, 0, 0, 1;
  EXPECT_TRUE(mounting.Transform().linear().isApprox(aboutX * aboutY * aboutZ, 1e-12));
  EXPECT_EQ(mounting.Transform().translation(), Eigen::Vector3d(1, 2, 3));
}

TEST(MountingTest, IsFoundAgainFromItsTransform) {
  for (const Eigen::Vector3d& angles :
       {Eigen::Vector3d(12, -8, 5), {-170, 80, 100}, {0, 0, 0}, {90, -45, -90}}) {
    const Mounting mounting = {angles, {0.1, 0.2, -0.3}};
    const Mounting found = MountingOf(mounting.Transform());
    EXPECT_LT((found.anglesDegrees - angles).norm(), 1e-9) << angles;
    EXPECT_EQ(found.translationMetres, mounting.translationMetres);
  }
}

}  // namespace
}  // namespace trackedcam::simulator
