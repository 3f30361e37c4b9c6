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

TEST(FrozenRowsTest, RepeatThePosesOfTheRowBefore) {
  for (const std::uint64_t seed : {1, 2, 3, 4, 5}) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    ShootOptions options;
    options.seed = seed;
    options.frozenRows = 3;
    options.trackerNoiseMm = 1;
    const std::vector<Photograph> photographs = SimulateShoot(options).photographs;
    EXPECT_FALSE(photographs.front().isFrozen);
    std::vector<std::size_t> frozen;
    for (std::size_t i = 1; i < photographs.size(); ++i) {
      const Photograph& before = photographs[i - 1];
      const Photograph& photograph = photographs[i];
      EXPECT_FALSE(photograph.Transform_Base_Tc.isApprox(before.Transform_Base_Tc, 1e-3));
      const bool isRepeated = photograph.trackedTc.matrix() == before.trackedTc.matrix();
      EXPECT_EQ(photograph.trackedTr.matrix() == before.trackedTr.matrix(), isRepeated);
      EXPECT_EQ(photograph.isFrozen, isRepeated);
      if (isRepeated) {
        frozen.push_back(i);
      }
    }
    ASSERT_EQ(frozen.size(), 3U);
    EXPECT_EQ(frozen.back() - frozen.front(), 2U);
  }
}

TEST(FrozenRowsTest, MayBeAllAfterTheFirst) {
  for (std::uint64_t seed = 1; seed <= 20; ++seed) {
    ShootOptions options;
    options.seed = seed;
    options.photographs = 3;
    options.frozenRows = 2;
    const std::vector<Photograph> photographs = SimulateShoot(options).photographs;
    EXPECT_FALSE(photographs[0].isFrozen) << "seed " << seed;
    EXPECT_EQ(photographs[0].trackedTc.matrix(), photographs[0].Transform_Base_Tc.matrix());
    EXPECT_EQ(photographs[1].trackedTc.matrix(), photographs[0].trackedTc.matrix());
    EXPECT_EQ(photographs[2].trackedTc.matrix(), photographs[0].trackedTc.matrix());
  }
}

class HeldPosesTest : public testing::Test {
 protected:
  HeldPosesTest() {
    options.photographs = 10;
    options.heldPoses = 4;  // 4, 4 and 2 photographs
    options.trackerNoiseMm = 1;
  }

  static bool AreHeld(std::size_t i, std::size_t k) { return i / 4 == k / 4; }

  ShootOptions options;
};

TEST_F(HeldPosesTest, AreEqualInTruthWithIndependentNoise) {
  const std::vector<Photograph> photographs = SimulateShoot(options).photographs;
  for (std::size_t i = 1; i < photographs.size(); ++i) {
    for (std::size_t k = 0; k < i; ++k) {
      SCOPED_TRACE(testing::Message() << "photographs " << k << " and " << i);
      for (const auto transform : {&Photograph::Transform_Cam_Chart, &Photograph::Transform_Base_Tc,
                                   &Photograph::Transform_Base_Tr}) {
        EXPECT_EQ((photographs[i].*transform).matrix() == (photographs[k].*transform).matrix(),
                  AreHeld(i, k));
      }
      EXPECT_EQ(photographs[i].corners == photographs[k].corners, AreHeld(i, k));
      EXPECT_NE(photographs[i].path, photographs[k].path);
      const auto noise = [&](std::size_t of) -> Eigen::Vector3d {
        return (photographs[of].Transform_Base_Tr.inverse() * photographs[of].trackedTr)
            .translation();
      };
      EXPECT_GT((noise(i) - noise(k)).norm(), 0.0001);
    }
  }
}

TEST_F(HeldPosesTest, AreThoseOfAShootThatHoldsNone) {
  const std::vector<Photograph> held = SimulateShoot(options).photographs;
  options.heldPoses = 1;
  const std::vector<Photograph> moving = SimulateShoot(options).photographs;
  for (std::size_t i = 0; i < held.size(); ++i) {
    EXPECT_EQ(held[i].Transform_Cam_Chart.matrix(), moving[i / 4].Transform_Cam_Chart.matrix());
  }
}

TEST_F(HeldPosesTest, KeepALooseTrackerInItsSeat) {
  options.trackerNoiseMm = 0;
  options.looseMm = 2;
  const std::vector<Photograph> photographs = SimulateShoot(options).photographs;
  for (std::size_t i = 0; i < photographs.size(); ++i) {
    EXPECT_EQ(photographs[i].trackedTc.matrix(), photographs[i / 4 * 4].trackedTc.matrix());
  }
}

TEST_F(HeldPosesTest, HaveOneReportedPoseIfRowsAreRepeated) {
  options.repeatedRows = true;
  const std::vector<Photograph> photographs = SimulateShoot(options).photographs;
  for (std::size_t i = 1; i < photographs.size(); ++i) {
    for (const auto tracked : {&Photograph::trackedTc, &Photograph::trackedTr}) {
      EXPECT_EQ((photographs[i].*tracked).matrix() == (photographs[i - 1].*tracked).matrix(),
                AreHeld(i, i - 1));
    }
    EXPECT_FALSE(photographs[i].isFrozen);
  }
}

class TurntableTest : public testing::TestWithParam<std::uint64_t> {
 protected:
  TurntableTest() {
    options.seed = GetParam();
    options.turntable = true;
    options.photographs = 11;
  }

  ShootOptions options;
};

INSTANTIATE_TEST_SUITE_P(Seeds, TurntableTest, testing::Values(1, 2, 3, 4));

TEST_P(TurntableTest, TheChartOnlyRotatesAboutOneAxisThroughItsMiddle) {
  const std::vector<Photograph> photographs = SimulateShoot(options).photographs;
  const Photograph& first = photographs.front();
  const Eigen::Vector3d middle(0.12, 0.075, 0);  // of 9 x 6 inner corners of 30 mm
  for (std::size_t i = 0; i < photographs.size(); ++i) {
    EXPECT_TRUE(photographs[i].Transform_Base_Tc.isApprox(first.Transform_Base_Tc, 1e-12));
    const Eigen::Isometry3d motion =
        first.Transform_Cam_Chart.inverse() * photographs[i].Transform_Cam_Chart;
    EXPECT_LT((motion * middle - middle).norm(), 1e-12);
    // 50 degrees in ten steps, about the direction of the columns.
    const Eigen::Matrix3d expected =
        Eigen::AngleAxisd(Radians(5.0 * static_cast<double>(i)), Eigen::Vector3d::UnitY())
            .toRotationMatrix();
    EXPECT_LT((motion.linear() - expected).norm(), 1e-12);
  }
}

TEST_P(TurntableTest, TheLoopOfTransformsCloses) {
  const Shoot shoot = SimulateShoot(options);
  for (const Photograph& photograph : shoot.photographs) {
    const Eigen::Isometry3d loop =
        photograph.Transform_Cam_Chart * shoot.trueMounting.Transform().inverse() *
        photograph.Transform_Base_Tr.inverse() * photograph.Transform_Base_Tc;
    EXPECT_LT((loop.matrix() - shoot.Transform_Cam_Tc.matrix()).norm(), 1e-12);
  }
}

// The paper ends two squares of 30 mm beyond the outermost inner corners.
TEST_P(TurntableTest, ThePaperIsNeverCutOff) {
  const Shoot shoot = SimulateShoot(options);
  for (const Photograph& photograph : shoot.photographs) {
    for (const double x : {-0.06, 0.30}) {
      for (const double y : {-0.06, 0.21}) {
        const Eigen::Vector2d corner =
            shoot.lens.Project(photograph.Transform_Cam_Chart * Eigen::Vector3d(x, y, 0));
        EXPECT_GT(corner.minCoeff(), 0);
        EXPECT_LT(corner.x(), options.imageWidth - 1);
        EXPECT_LT(corner.y(), options.imageHeight - 1);
      }
    }
  }
}

TEST_P(TurntableTest, HeldPosesStayWhereTheyAre) {
  options.heldPoses = 5;  // 5, 5 and 1 photographs: at -25, 0 and 25 degrees
  const std::vector<Photograph> photographs = SimulateShoot(options).photographs;
  const auto angle = [&](std::size_t i, std::size_t k) {
    return Angle(photographs[i].Transform_Cam_Chart.inverse() * photographs[k].Transform_Cam_Chart);
  };
  EXPECT_NEAR(angle(0, 4), 0, 1e-5);
  EXPECT_NEAR(angle(4, 5), 25, 1e-9);
  EXPECT_NEAR(angle(0, 10), 50, 1e-9);
}

TEST_P(TurntableTest, OnePhotographIsEnough) {
  options.photographs = 1;
  EXPECT_EQ(SimulateShoot(options).photographs.size(), 1U);
}

}  // namespace
}  // namespace trackedcam::simulator
