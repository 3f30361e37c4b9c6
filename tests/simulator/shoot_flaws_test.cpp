#include <algorithm>
#include <vector>

#include <gtest/gtest.h>

#include "simulator/mounting.h"
#include "simulator/shoot.h"

namespace trackedcam::simulator {
namespace {

double Angle(const Eigen::Isometry3d& transform) {
  return Degrees(Eigen::AngleAxisd(transform.linear()).angle());
}

long Count(const Shoot& shoot, Flaw flaw) {
  return std::count_if(shoot.photographs.begin(), shoot.photographs.end(),
                       [&](const Photograph& photograph) { return photograph.flaw == flaw; });
}

TEST(ShootFlawsTest, EachFlawOccursAsOftenAsAskedFor) {
  ShootOptions options;
  options.missing = 1;
  options.notAnImage = 2;
  options.withoutChart = 3;
  options.outliers = 4;
  const Shoot shoot = SimulateShoot(options);
  EXPECT_EQ(shoot.photographs.size(), 20U);
  EXPECT_EQ(Count(shoot, Flaw::kMissing), 1);
  EXPECT_EQ(Count(shoot, Flaw::kNotAnImage), 2);
  EXPECT_EQ(Count(shoot, Flaw::kWithoutChart), 3);
  EXPECT_EQ(Count(shoot, Flaw::kSlippedTracker), 4);
  EXPECT_EQ(Count(shoot, Flaw::kNone), 10);
}

TEST(ShootFlawsTest, TheSeedDecidesWhichPhotographsAreFlawed) {
  ShootOptions options;
  options.outliers = 5;
  const auto flaws = [&](std::uint64_t seed) {
    options.seed = seed;
    std::vector<Flaw> list;
    for (const Photograph& photograph : SimulateShoot(options).photographs) {
      list.push_back(photograph.flaw);
    }
    return list;
  };
  EXPECT_EQ(flaws(1), flaws(1));
  EXPECT_NE(flaws(1), flaws(2));
}

TEST(ShootFlawsTest, OneTrackerOfAnOutlierSlipsByTheStatedAmount) {
  ShootOptions options;
  options.outliers = 8;
  options.slipMm = 25;
  options.slipDegrees = 2;
  const Shoot shoot = SimulateShoot(options);
  for (const Photograph& photograph : shoot.photographs) {
    const Eigen::Isometry3d ofTc = photograph.Transform_Base_Tc.inverse() * photograph.trackedTc;
    const Eigen::Isometry3d ofTr = photograph.Transform_Base_Tr.inverse() * photograph.trackedTr;
    const bool isOutlier = photograph.flaw == Flaw::kSlippedTracker;
    EXPECT_NEAR(ofTc.translation().norm() + ofTr.translation().norm(), isOutlier ? 0.025 : 0, 1e-9);
    EXPECT_NEAR(Angle(ofTc) + Angle(ofTr), isOutlier ? 2 : 0, 1e-5);
    EXPECT_TRUE(ofTc.isApprox(Eigen::Isometry3d::Identity(), 1e-9) ||
                ofTr.isApprox(Eigen::Isometry3d::Identity(), 1e-9));
  }
}

// The root mean square of the noise along and about each axis, in the trackers' frames.
struct Spread {
  Eigen::Vector3d metres = Eigen::Vector3d::Zero();
  Eigen::Vector3d radians = Eigen::Vector3d::Zero();
};

Spread SpreadOf(const Shoot& shoot, Eigen::Isometry3d Photograph::*truth,
                Eigen::Isometry3d Photograph::*tracked) {
  Spread spread;
  for (const Photograph& photograph : shoot.photographs) {
    const Eigen::Isometry3d noise = (photograph.*truth).inverse() * (photograph.*tracked);
    const Eigen::AngleAxisd turn(noise.linear());
    spread.metres += noise.translation().cwiseAbs2();
    spread.radians += (turn.angle() * turn.axis()).cwiseAbs2();
  }
  const auto count = static_cast<double>(shoot.photographs.size());
  spread.metres = (spread.metres / count).cwiseSqrt();
  spread.radians = (spread.radians / count).cwiseSqrt();
  return spread;
}

TEST(TrackerNoiseTest, HasTheStatedSpreadAlongAndAboutEachAxis) {
  ShootOptions options;
  options.photographs = 2000;
  options.trackerNoiseMm = 0.8;
  options.trackerNoiseDegrees = 0.1;
  const Shoot shoot = SimulateShoot(options);
  for (const Spread& spread :
       {SpreadOf(shoot, &Photograph::Transform_Base_Tc, &Photograph::trackedTc),
        SpreadOf(shoot, &Photograph::Transform_Base_Tr, &Photograph::trackedTr)}) {
    for (int axis = 0; axis < 3; ++axis) {
      EXPECT_NEAR(spread.metres[axis], 0.0008, 0.00006);
      EXPECT_NEAR(Degrees(spread.radians[axis]), 0.1, 0.0075);
    }
  }
}

TEST(TrackerNoiseTest, DoesNotMoveCameraOrChart) {
  ShootOptions options;
  const Shoot quiet = SimulateShoot(options);
  options.trackerNoiseMm = 1;
  const Shoot noisy = SimulateShoot(options);
  for (const auto transform : {&Photograph::Transform_Cam_Chart, &Photograph::Transform_Base_Tc,
                               &Photograph::Transform_Base_Tr}) {
    EXPECT_EQ(quiet.Matrices(transform), noisy.Matrices(transform));
  }
}

}  // namespace
}  // namespace trackedcam::simulator
