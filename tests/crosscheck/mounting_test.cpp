#include <cmath>

#include <gmock/gmock.h>

#include "crosscheck/reported_poses.h"
#include "support/transform_matchers.h"

namespace trackedcam::crosscheck {
namespace {

using test::IsNear;

// Written out: x, y and z are turned about in the order of the letters from right to left.
Eigen::Matrix3d WrittenOut(double x, double y, double z) {
  const double degree = std::acos(-1.0) / 180;
  const double cx = std::cos(x * degree), sx = std::sin(x * degree);
  const double cy = std::cos(y * degree), sy = std::sin(y * degree);
  const double cz = std::cos(z * degree), sz = std::sin(z * degree);
  Eigen::Matrix3d rx, ry, rz;
  rx << 1, 0, 0, 0, cx, -sx, 0, sx, cx;
  ry << cy, 0, sy, 0, 1, 0, -sy, 0, cy;
  rz << cz, -sz, 0, sz, cz, 0, 0, 0, 1;
  return rx * ry * rz;
}

TEST(MountingTest, TurnsAboutXThenYThenZ) {
  const Pose pose = TransformOf({{12, -8, 5}, {0.1, -0.05, 0.02}});
  EXPECT_THAT(pose.linear(), IsNear(WrittenOut(12, -8, 5), 1e-14));
  EXPECT_EQ(pose.translation(), Eigen::Vector3d(0.1, -0.05, 0.02));
}

TEST(MountingTest, ValuesComeBack) {
  for (const double x : {-179.0, -90.0, 0.0, 33.0, 150.0}) {
    for (const double y : {-89.0, -10.0, 0.0, 60.0}) {
      for (const double z : {-120.0, 0.0, 7.0, 179.0}) {
        const Mounting mounting = {{x, y, z}, {1, 2, 3}};
        const Mounting back = MountingOf(TransformOf(mounting));
        for (std::size_t i = 0; i < 3; ++i) {
          EXPECT_NEAR(back.rotationDegrees[i], mounting.rotationDegrees[i], 1e-9);
          EXPECT_DOUBLE_EQ(back.translationMetres[i], mounting.translationMetres[i]);
        }
      }
    }
  }
}

TEST(MountingTest, WhereTwoAnglesAreOneTheTransformComesBack) {
  for (const double y : {-90.0, 90.0}) {
    const Pose pose = TransformOf({{20, y, 30}, {}});
    EXPECT_THAT(TransformOf(MountingOf(pose)).linear(), IsNear(pose.linear(), 1e-9));
  }
}

TEST(MountingTest, TheAxisFixTakesTheTrackersAxes) {
  EXPECT_EQ(AxisFix() * Eigen::Vector3d(1, 2, 3), Eigen::Vector3d(-1, -3, -2));
  EXPECT_EQ(AxisFix() * AxisFix(), Eigen::Matrix3d::Identity());
}

}  // namespace
}  // namespace trackedcam::crosscheck
