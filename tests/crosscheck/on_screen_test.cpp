#include "crosscheck/on_screen.h"

#include <algorithm>
#include <cmath>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "crosscheck/cross_check.h"
#include "crosscheck/kit/coverage.h"
#include "crosscheck/kit/reported.h"
#include "crosscheck/kit/shoot_flaws.h"
#include "crosscheck/statistics.h"

namespace trackedcam::crosscheck {
namespace {

using test::Get;
using test::Has;
using ::testing::AllOf;
using ::testing::Contains;
using ::testing::Not;

constexpr double kQuietCorners = 0.05;  // pixels

// Of tables: Rayleigh's and Student's distribution, and Fisher's of 2 and 10 degrees of freedom.
TEST(PlaneRadiusTest, IsThatOfCirclesAndLines) {
  constexpr double kManyDegrees = 1e9;
  const Eigen::Matrix2d circle = Eigen::Matrix2d::Identity();
  const Eigen::Matrix2d line = Eigen::Vector2d(0.36, 0.64).asDiagonal().toDenseMatrix() +
                               0.48 * (Eigen::Matrix2d() << 0, 1, 1, 0).finished();
  EXPECT_NEAR(PlaneRadius95(circle, kManyDegrees), 2.4477, 1e-3);
  EXPECT_NEAR(PlaneRadius95(9 * circle, kManyDegrees), 3 * 2.4477, 3e-3);
  EXPECT_NEAR(PlaneRadius95(line, kManyDegrees), 1.9600, 2e-2);
  EXPECT_NEAR(PlaneRadius95(circle, 10), std::sqrt(2 * 4.1028), 1e-3);
  EXPECT_NEAR(PlaneRadius95(line, 10), 2.2281, 2e-2);
  EXPECT_EQ(PlaneRadius95(Eigen::Matrix2d::Zero(), 10), 0);
  EXPECT_TRUE(std::isnan(PlaneRadius95(std::nan("") * circle, 10)));
}

TEST(OnScreenTest, DistancesAreTheChartsAndThreeWallsUnlessAskedFor) {
  test::KnownShoot shoot = test::MakeShoot(test::FortyNoisy(43), kQuietCorners);
  const CrossCheck usual = Check(shoot.observations);
  ASSERT_EQ(usual.onScreen.size(), 4U);
  double chart = 0;
  for (const PerPhotograph& photograph : usual.perPhotograph) {
    chart += photograph.Transform_Cam_Chart.topRightCorner<3, 1>().norm() /
             static_cast<double>(usual.perPhotograph.size());
  }
  EXPECT_NEAR(usual.onScreen[0].distanceMetres, chart, 1e-3);
  EXPECT_EQ(usual.onScreen[1].distanceMetres, 2);
  EXPECT_EQ(usual.onScreen[3].distanceMetres, 10);
  shoot.observations.atMetres = {7, 0.8, 7};
  const CrossCheck asked = Check(shoot.observations);
  ASSERT_EQ(asked.onScreen.size(), 2U);
  EXPECT_EQ(asked.onScreen[0].distanceMetres, 0.8);
  EXPECT_EQ(asked.onScreen[1].distanceMetres, 7);
  shoot.observations.atMetres = {-1};
  EXPECT_THROW(Check(shoot.observations), std::invalid_argument);
}

// Where no corner is distorted, a pixel is a fixed angle.
TEST(OnScreenTest, MillimetresArePixelsOnTheWall) {
  test::KnownShoot shoot = test::MakeShoot(test::FortyNoisy(43), kQuietCorners);
  shoot.observations.atMetres = {4};
  const CrossCheck check = Check(shoot.observations);
  const OnScreen& at = check.onScreen.front();
  EXPECT_NEAR(at.middle.mm, 4000 * at.middle.pixels / shoot.observations.lens.fx,
              0.01 * at.middle.mm);
  EXPECT_GT(at.corner.pixels, at.middle.pixels);
  ASSERT_EQ(at.cellPixels.size(),
            static_cast<std::size_t>(check.imageCells.columns * check.imageCells.rows));
  const auto [least, most] = std::minmax_element(at.cellPixels.begin(), at.cellPixels.end());
  EXPECT_LE(*least, 1.01 * at.middle.pixels);
  EXPECT_LE(*most, at.corner.pixels);
}

TEST(OnScreenTest, TheTrueErrorIsWithinTheStatedOne) {
  constexpr int kShoots = 12;
  for (const test::Cell& cell : test::CoverageCells()) {
    SCOPED_TRACE(cell.name);
    const test::Tally tally = test::RunCell(cell, 700, kShoots);
    for (const test::OnScreenTally& at : tally.onScreen) {
      for (const int count : {at.middlePixels, at.middleMm, at.cornerPixels, at.cornerMm}) {
        EXPECT_GE(count, kShoots - 3);  // fewer once in 500 times
      }
    }
  }
}

// What is stored of a calibration for later says the same.
TEST(OnScreenTest, IsThatOfTheStoredCalibration) {
  test::KnownShoot shoot = test::MakeShoot(test::FortyNoisy(43), kQuietCorners);
  shoot.observations.atMetres = {4};
  const CrossCheck check = Check(shoot.observations);
  const Calibration& stored = check.calibration.value();
  const OnScreen again = OnScreenAt(4, stored.lens, CovarianceOfCamera(stored), stored.freedom);
  EXPECT_NEAR(again.middle.pixels, check.onScreen.front().middle.pixels,
              0.05 * again.middle.pixels);
  EXPECT_NEAR(again.corner.mm, check.onScreen.front().corner.mm, 0.05 * again.corner.mm);
  EXPECT_EQ(again.worstCorner, check.onScreen.front().worstCorner);
}

TEST(LensNotSeenTest, ACarefulShootLeavesNothing) {
  EXPECT_FALSE(
      Has<LensNotSeen>(Check(test::MakeShoot(test::FortyNoisy(43), kQuietCorners).observations)));
}

// With soft corners and a chart that stays in the middle.
TEST(LensNotSeenTest, NamesTheCornersThatNoChartReached) {
  simulator::Shoot simulated = simulator::SimulateShoot(test::FortyNoisy(45));
  test::StepBack(simulated, 2);
  const CrossCheck check = Check(test::MakeShoot(simulated, 0.3).observations);
  ASSERT_TRUE(Has<LensNotSeen>(check));
  const auto& finding = Get<LensNotSeen>(check);
  EXPECT_THAT(finding.parts,
              AllOf(Contains(ImagePart::kUpperRight), Contains(ImagePart::kLowerRight),
                    Not(Contains(ImagePart::kMiddle))));
  const auto& seen = check.imageCells.seen;
  EXPECT_LE(finding.share, static_cast<double>(std::count(seen.begin(), seen.end(), false)) /
                               static_cast<double>(seen.size()));
  EXPECT_GT(finding.pixels, 2);
}

// The library's lens lacks the k3 that the corners show, and it matters most outside of them.
TEST(LensNotSeenTest, IncludesWhatTheLibrarysLensLeavesOut) {
  simulator::ShootOptions options = test::FortyNoisy(7);
  options.lens = simulator::DefaultLens(options.imageWidth, options.imageHeight);
  options.lens->k3 = -0.3;
  const simulator::Shoot simulated = simulator::SimulateShoot(options);
  const test::KnownShoot shoot = test::MakeShoot(simulated, kQuietCorners);
  const CrossCheck check = Check(shoot.observations);
  ASSERT_TRUE(Has<LensNotSeen>(check));
  const Eigen::Vector2d inCorner = MiddlesOf(check.imageCells, shoot.observations.lens).back();
  const double off = test::TrueErrorAt(inCorner, 2, simulated.lens, shoot, check).pixels;
  EXPECT_GT(off, 2);
  EXPECT_GT(Get<LensNotSeen>(check).pixels, off);
}

}  // namespace
}  // namespace trackedcam::crosscheck
