#include "simulator/random.h"

#include <vector>

#include <gtest/gtest.h>

namespace trackedcam::simulator {
namespace {

constexpr int kDraws = 20000;

TEST(RandomTest, EachSeedPurposeAndPhotographHasItsOwnSequence) {
  EXPECT_EQ(Random(1, Draw::kPose, 2).Bits(), Random(1, Draw::kPose, 2).Bits());
  const auto bits = Random(1, Draw::kPose, 2).Bits();
  EXPECT_NE(bits, Random(2, Draw::kPose, 2).Bits());
  EXPECT_NE(bits, Random(1ULL << 32 | 1, Draw::kPose, 2).Bits());
  EXPECT_NE(bits, Random(1, Draw::kTrackers, 2).Bits());
  EXPECT_NE(bits, Random(1, Draw::kPose, 3).Bits());
}

TEST(RandomTest, UniformNumbersFillTheirRange) {
  Random random(1, Draw::kRig);
  double least = 1e9;
  double most = -1e9;
  double sum = 0;
  for (int i = 0; i < kDraws; ++i) {
    const double number = random.Uniform(-2, 4);
    least = std::min(least, number);
    most = std::max(most, number);
    sum += number;
  }
  EXPECT_GE(least, -2);
  EXPECT_LT(least, -1.99);
  EXPECT_LT(most, 4);
  EXPECT_GT(most, 3.99);
  EXPECT_NEAR(sum / kDraws, 1, 0.05);
}

TEST(RandomTest, NormalNumbersHaveSpread1About0) {
  Random random(1, Draw::kRig);
  double sum = 0;
  double squares = 0;
  int within1 = 0;
  for (int i = 0; i < kDraws; ++i) {
    const double number = random.Normal();
    sum += number;
    squares += number * number;
    within1 += std::abs(number) < 1 ? 1 : 0;
  }
  EXPECT_NEAR(sum / kDraws, 0, 0.03);
  EXPECT_NEAR(squares / kDraws, 1, 0.04);
  EXPECT_NEAR(static_cast<double>(within1) / kDraws, 0.683, 0.015);
}

TEST(RandomTest, DirectionsAreUnitVectorsToAllSides) {
  Random random(1, Draw::kRig);
  Eigen::Vector3d sum = Eigen::Vector3d::Zero();
  for (int i = 0; i < kDraws; ++i) {
    const Eigen::Vector3d direction = random.Direction();
    EXPECT_NEAR(direction.norm(), 1, 1e-12);
    sum += direction;
  }
  EXPECT_LT((sum / kDraws).norm(), 0.02);
}

TEST(RandomTest, ADisplacementHasTheStatedAngleAndLength) {
  Random random(1, Draw::kRig);
  const Eigen::Isometry3d displacement = random.Displacement(0.4, 0.03);
  EXPECT_NEAR(Eigen::AngleAxisd(displacement.linear()).angle(), 0.4, 1e-12);
  EXPECT_NEAR(displacement.translation().norm(), 0.03, 1e-12);
}

}  // namespace
}  // namespace trackedcam::simulator
