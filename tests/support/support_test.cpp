#include <limits>

#include <Eigen/Geometry>
#include <gtest/gtest.h>

#include "support/log_lines.h"
#include "support/transform_matchers.h"

namespace trackedcam::test {
namespace {

using testing::Not;

Eigen::Matrix4d TurnedBy(double degrees) {
  Eigen::Matrix4d transform = Eigen::Matrix4d::Identity();
  transform.topLeftCorner<3, 3>() =
      Eigen::AngleAxisd(degrees * EIGEN_PI / 180, Eigen::Vector3d(1, 2, 2) / 3).toRotationMatrix();
  return transform;
}

TEST(TransformMatchers, MeasureTheAngleOfTheRotationBetween) {
  EXPECT_NEAR(
      AngleBetweenDeg(TurnedBy(10).topLeftCorner<3, 3>(), TurnedBy(10.02).topLeftCorner<3, 3>()),
      0.02, 1e-9);
  EXPECT_NEAR(
      AngleBetweenDeg(TurnedBy(0).topLeftCorner<3, 3>(), TurnedBy(180).topLeftCorner<3, 3>()), 180,
      1e-9);
}

TEST(TransformMatchers, AcceptUpToTheToleranceAndNoMore) {
  Eigen::Matrix4d moved = TurnedBy(10);
  moved(0, 3) = 0.001;
  EXPECT_THAT(moved, IsTransformNear(TurnedBy(10.1), 0.0011, 0.11));
  EXPECT_THAT(moved, Not(IsTransformNear(TurnedBy(10.1), 0.0009, 0.11)));
  EXPECT_THAT(moved, Not(IsTransformNear(TurnedBy(10.1), 0.0011, 0.09)));
  EXPECT_THAT(moved, IsNear(TurnedBy(10), 0.0011));
  EXPECT_THAT(moved, Not(IsNear(TurnedBy(10), 0.0009)));
}

TEST(TransformMatchers, RejectWhatIsNotANumber) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  for (int i = 0; i < 16; ++i) {
    Eigen::Matrix4d broken = Eigen::Matrix4d::Identity();
    broken(i / 4, i % 4) = nan;
    const Eigen::Matrix4d identity = Eigen::Matrix4d::Identity();
    EXPECT_THAT(broken, Not(IsTransformNear(identity, 1e9, 360.0))) << i;
    EXPECT_THAT(broken, Not(IsNear(identity, 1e9))) << i;
  }
}

TEST(TransformMatchers, RejectMirrorsAndStretches) {
  const Eigen::Matrix4d mirror = Eigen::Vector4d(1, 1, -1, 1).asDiagonal();
  EXPECT_FALSE(IsRigid(mirror));
  const Eigen::Matrix4d stretched = Eigen::Vector4d(1.001, 1, 1, 1).asDiagonal();
  EXPECT_FALSE(IsRigid(stretched));
  EXPECT_TRUE(IsRigid(TurnedBy(77)));
}

TEST(LogLines, CompareTextExactlyAndNumbersWithinTheTolerance) {
  const ExpectedLine line("Fx : 10.000000 pixel.", 1e-5);
  EXPECT_TRUE(LineReads("Fx : 10.000001 pixel.", line));
  EXPECT_FALSE(LineReads("Fx : 10.001000 pixel.", line));
  EXPECT_FALSE(LineReads("Fx : 10.000000 pixel", line));
  EXPECT_FALSE(LineReads("Fx : 10.000000 pixel. ", line));
  EXPECT_FALSE(LineReads("Fx : nan pixel.", {line.text, 1e9}));
}

TEST(LogLines, TakeAnyNumberForANumberSign) {
  const ExpectedLine line("Diff R in image 3 : # degree.");
  EXPECT_TRUE(LineReads("Diff R in image 3 : -nan degree.", line));
  EXPECT_TRUE(LineReads("Diff R in image 3 : 1.000000 degree.", line));
  EXPECT_FALSE(LineReads("Diff R in image 3 : 1 degree.", line));
  EXPECT_FALSE(LineReads("Diff R in image 4 : 1.000000 degree.", line));
}

TEST(LogLines, AreReadForTheirNumbers) {
  const std::vector<std::string> log = {"T : 1.5, -2", "x", "T : ", "[[3.000000, -0.250000],",
                                        " [nothing, 4]]"};
  EXPECT_EQ(NumbersBehind(log, "T : ", 0, 1), (std::vector<double>{1.5, -2}));
  EXPECT_EQ(NumbersBehind(log, "T : ", 1, 3), (std::vector<double>{3, -0.25, 4}));
  EXPECT_TRUE(NumbersBehind(log, "T : ", 2, 1).empty());
  EXPECT_TRUE(NumbersBehind(log, "T : ", 1, 9).size() == 3);
}

TEST(LogLines, MustAllBeThere) {
  EXPECT_TRUE(LogReads({"a", "b"}, {"a", "b"}));
  EXPECT_FALSE(LogReads({"a"}, {"a", "b"}));
  EXPECT_FALSE(LogReads({"a", "b"}, {"a"}));
  EXPECT_FALSE(LogReads({"b", "a"}, {"a", "b"}));
}

}  // namespace
}  // namespace trackedcam::test
