// Flaws that a calibration's model leaves out: found, named, and taken into account where the
// corners show them.

#include <algorithm>
#include <cmath>
#include <vector>

#include <gmock/gmock.h>

#include "crosscheck/corner_flaws.h"
#include "crosscheck/evidence.h"
#include "crosscheck/kit/coverage.h"
#include "crosscheck/kit/information.h"
#include "crosscheck/kit/known_shoot.h"
#include "crosscheck/kit/reported.h"
#include "crosscheck/kit/shoot_flaws.h"
#include "crosscheck/not_still.h"
#include "simulator/random.h"
#include "simulator/shoot.h"

namespace trackedcam::crosscheck {
namespace {

using test::FortyNoisy;
using test::Get;
using test::Has;
using test::KnownShoot;
using test::MakeShoot;
using test::Reported;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;

constexpr double kCornerNoise = 0.05;  // pixels

CrossCheck CheckWithLibrary(KnownShoot shoot) {
  shoot.observations.library = test::BelievingTheMounting(shoot).matrix();
  return Check(shoot.observations);
}

// Of the twelve axes of both transforms, how many intervals hold.
std::size_t Held(const CrossCheck& check, const KnownShoot& shoot) {
  const auto covered = test::Covered(check, shoot);
  return static_cast<std::size_t>(std::count(covered.begin(), covered.end(), true));
}

double OffMm(const CrossCheck& check, const KnownShoot& shoot) {
  return 1e3 *
         (check.Transform_Cam_Tc.topRightCorner<3, 1>() - shoot.Transform_Cam_Tc.translation())
             .norm();
}

TEST(CornerFlawsTest, AFlawlessShootHasNone) {
  for (std::uint64_t seed = 1; seed <= 20; ++seed) {
    const KnownShoot shoot = MakeShoot(FortyNoisy(seed), kCornerNoise);
    EXPECT_THAT(Gather(shoot.observations).corners.flaws, IsEmpty()) << "seed " << seed;
  }
}

TEST(CornerFlawsTest, ABowedChartIsMeasuredAndTakenIntoAccount) {
  std::vector<double> movedPerMm;
  for (const double bow : {0.0002, 0.0005, -0.001}) {
    SCOPED_TRACE(bow);
    simulator::ShootOptions options = FortyNoisy(3);
    options.chart.bowMetres = bow;
    const KnownShoot shoot = MakeShoot(options, kCornerNoise);
    const Evidence evidence = Gather(shoot.observations);
    ASSERT_THAT(evidence.corners.flaws, ElementsAre(CornerFlaw::kNotFlat));
    const BoardShape& shape = evidence.corners.model.board.shape;
    EXPECT_NEAR(shape.bowAlongRows, bow / 2, 3e-5);
    EXPECT_NEAR(shape.bowAlongColumns, bow / 2, 3e-5);
    EXPECT_NEAR(shape.warp, 0, 3e-5);

    const CrossCheck check = CheckWithLibrary(shoot);
    ASSERT_TRUE(Has<ChartNotFlat>(check));
    const auto& finding = Get<ChartNotFlat>(check);
    EXPECT_NEAR(finding.bowMm, 1e3 * bow, 0.05);
    movedPerMm.push_back(finding.movedMm / std::abs(finding.bowMm));
    EXPECT_LT(OffMm(check, shoot), 1.5);
    EXPECT_GE(Held(check, shoot), 11U);
  }
  EXPECT_THAT(movedPerMm, testing::Each(testing::DoubleNear(movedPerMm.front(), 0.5)));
  EXPECT_GT(movedPerMm.front(), 5);
}

// The limits: half of the interval and 0.5 mm for a doubt, 2 mm for an error.
TEST(CornerFlawsTest, TheSeverityFollowsWhatAFlawMoves) {
  const auto severityAt = [](double bow) {
    simulator::ShootOptions options = FortyNoisy(4);
    options.chart.bowMetres = bow;
    return Reported(CheckWithLibrary(MakeShoot(options, kCornerNoise)));
  };
  EXPECT_THAT(severityAt(0.00008), Contains("chartNotFlat note"));
  EXPECT_THAT(severityAt(0.00015), Contains("chartNotFlat warning"));
  EXPECT_THAT(severityAt(0.0006), Contains("chartNotFlat error"));
}

TEST(CornerFlawsTest, SquaresThatAreWiderThanHighAreMeasured) {
  for (const double stretch : {0.005, -0.005}) {
    SCOPED_TRACE(stretch);
    simulator::ShootOptions options = FortyNoisy(5);
    options.chart.stretch = stretch;
    const KnownShoot shoot = MakeShoot(options, kCornerNoise);
    const CrossCheck check = CheckWithLibrary(shoot);
    ASSERT_TRUE(Has<ChartStretched>(check));
    EXPECT_NEAR(Get<ChartStretched>(check).widerBy, stretch, 2e-4);
    // Which edge was measured is not known, and the interval says so.
    EXPECT_GE(Held(check, shoot), 11U);
    const CrossCheck without = Check(MakeShoot(FortyNoisy(5), kCornerNoise).observations);
    EXPECT_GT(check.standardErrorCamTc.translationMm.norm(),
              1.5 * without.standardErrorCamTc.translationMm.norm());
  }
}

TEST(CornerFlawsTest, TangentialDistortionIsOfTheTransformAloneAndHardlyOfBothTogether) {
  simulator::ShootOptions options = FortyNoisy(6);
  options.imageWidth = 1280;
  options.imageHeight = 720;
  options.lens = simulator::DefaultLens(1280, 720);
  options.lens->p1 = 0.001;
  const KnownShoot shoot = MakeShoot(options, kCornerNoise);
  const CrossCheck check = CheckWithLibrary(shoot);
  ASSERT_TRUE(Has<LensModel>(check));
  const auto& finding = Get<LensModel>(check);
  EXPECT_NEAR(finding.p1, 0.001, 1e-4);
  EXPECT_NEAR(finding.p2, 0, 1e-4);
  EXPECT_EQ(finding.k3, 0);
  EXPECT_GT(finding.movedDegrees, 0.1);
  EXPECT_LT(finding.movedDegrees, 0.3);
  EXPECT_EQ(finding.distanceMetres, 4);
  EXPECT_LT(finding.pixels, 0.5);
  EXPECT_GE(Held(check, shoot), 11U);
}

TEST(CornerFlawsTest, RadialDistortionOfSixthOrderIsNamed) {
  simulator::ShootOptions options = FortyNoisy(7);
  options.lens = simulator::DefaultLens(options.imageWidth, options.imageHeight);
  options.lens->k3 = -0.3;
  const CrossCheck check = CheckWithLibrary(MakeShoot(options, kCornerNoise));
  ASSERT_TRUE(Has<LensModel>(check));
  EXPECT_NEAR(Get<LensModel>(check).k3, -0.3, 0.1);
  EXPECT_EQ(Get<LensModel>(check).p1, 0);
}

TEST(CornerFlawsTest, SeveralFlawsAreToldApart) {
  simulator::ShootOptions options = FortyNoisy(8);
  options.chart.bowMetres = 0.0005;
  options.chart.stretch = 0.004;
  options.lens = simulator::DefaultLens(options.imageWidth, options.imageHeight);
  options.lens->p2 = 0.001;
  const CrossCheck check = CheckWithLibrary(MakeShoot(options, kCornerNoise));
  ASSERT_TRUE(Has<ChartNotFlat>(check) && Has<ChartStretched>(check) && Has<LensModel>(check));
  EXPECT_NEAR(Get<ChartNotFlat>(check).bowMm, 0.5, 0.05);
  EXPECT_NEAR(Get<ChartStretched>(check).widerBy, 0.004, 2e-4);
  EXPECT_NEAR(Get<LensModel>(check).p2, 0.001, 1e-4);
}

// What one photograph's corners say and what is left without a flaw: by a second fit, which is slow
// and plain.
TEST(CornerFlawsTest, ChangeWithoutIsTheDifferenceOfTwoFits) {
  simulator::ShootOptions options = FortyNoisy(9);
  options.chart.bowMetres = 0.0003;
  const KnownShoot shoot = MakeShoot(options);
  const Evidence evidence = Gather(shoot.observations);
  ASSERT_THAT(evidence.corners.flaws, ElementsAre(CornerFlaw::kNotFlat));
  const Eigen::VectorXd change = ChangeWithout(evidence.corners, CornerFlaw::kNotFlat);
  const Lens& with = evidence.corners.model.lens;
  const Lens& without = shoot.observations.lens;  // fitted to the same corners, with a flat board
  EXPECT_NEAR(change[0], without.fx - with.fx, 0.02 * std::abs(change[0]) + 0.05);
  EXPECT_NEAR(change[1], without.fy - with.fy, 0.02 * std::abs(change[1]) + 0.05);
  EXPECT_NEAR(change[2], without.cx - with.cx, 0.05 * std::abs(change[2]) + 0.05);
  EXPECT_NEAR(change[3], without.cy - with.cy, 0.05 * std::abs(change[3]) + 0.05);
}

TEST(ScaleTest, IsInTheIntervalsAndItsEffectIsReported) {
  KnownShoot shoot = MakeShoot(FortyNoisy(10), kCornerNoise);
  const CrossCheck check = Check(shoot.observations);
  EXPECT_EQ(check.scale.uncertainty, 0.001);
  // The same shoot with squares that are stated 0.1 % smaller.
  KnownShoot smaller = shoot;
  test::MisstateSquares(smaller, 1.001);
  const CrossCheck other = Check(smaller.observations);
  const double moved = 1e3 * (check.Transform_Cam_Tc.topRightCorner<3, 1>() -
                              other.Transform_Cam_Tc.topRightCorner<3, 1>())
                                 .norm();
  EXPECT_NEAR(check.scale.mmPerPermille, moved, 0.05);
  EXPECT_GT(moved, 0.3);

  shoot.observations.scaleUncertainty = 0;
  const CrossCheck exact = Check(shoot.observations);
  const double with = check.standardErrorCamTc.translationMm.squaredNorm();
  const double without = exact.standardErrorCamTc.translationMm.squaredNorm();
  EXPECT_NEAR(std::sqrt(with - without), check.scale.mmPerPermille, 0.02);
}

TEST(ScaleTest, IsFoundAsAccuratelyAsAnyTestCould) {
  constexpr double kOff = 0.005;
  const simulator::ShootOptions options = FortyNoisy(12);
  simulator::ShootOptions flawed = options;
  flawed.trackerScale = 1 + kOff;
  flawed.trackerNoiseMm = flawed.trackerNoiseDegrees = 0;
  const double atBest = test::StandardErrorsAtBest(simulator::SimulateShoot(flawed),
                                                   simulator::SimulateShoot(options), kCornerNoise);
  KnownShoot shoot = MakeShoot(options, kCornerNoise);
  shoot.observations.scaleUncertainty = 0;
  EXPECT_NEAR(kOff / Check(shoot.observations).square.standardError / atBest, 1, 0.15);
}

TEST(ScaleTest, TrackersThatMeasureLengthsWronglyAreFoundFromTheShoot) {
  simulator::ShootOptions options = FortyNoisy(11);
  options.trackerScale = 1.01;
  const KnownShoot shoot = MakeShoot(options, kCornerNoise);
  const CrossCheck check = CheckWithLibrary(shoot);
  ASSERT_TRUE(Has<SquareSizeOff>(check));
  EXPECT_NEAR(Get<SquareSizeOff>(check).factor, 1.01, 0.003);
  EXPECT_GE(Held(check, shoot), 11U);
}

TEST(ScaleTest, OutliersTakeTheIntervalFromTheSizeOfTheSquares) {
  simulator::ShootOptions options = FortyNoisy(12);
  options.trackerScale = 1.02;
  options.outliers = 5;
  const CrossCheck check = CheckWithLibrary(MakeShoot(options, kCornerNoise));
  ASSERT_TRUE(Has<SquareSizeOff>(check));
  EXPECT_TRUE(std::isnan(Get<SquareSizeOff>(check).standardError));
  options.outliers = 0;
  EXPECT_TRUE(std::isfinite(
      Get<SquareSizeOff>(CheckWithLibrary(MakeShoot(options, kCornerNoise))).standardError));
}

TEST(TrackerFlawsTest, AMountThatSagsIsNamed) {
  simulator::ShootOptions options = FortyNoisy(13);
  options.sagMm = 3;
  const CrossCheck check = CheckWithLibrary(MakeShoot(options, kCornerNoise));
  // It also explains why the stated mounting and the result do not fit.
  ASSERT_THAT(Reported(check), ElementsAre("mountSags error"));
  EXPECT_NEAR(Get<TrackerErrors>(check).mm, 3, 0.7);
  EXPECT_LT(check.nominalMounting->p, kCertain);
}

TEST(TrackerFlawsTest, AFlawDoesNotHideAMountingThatIsOff) {
  simulator::ShootOptions options = FortyNoisy(13);
  options.sagMm = 3;
  options.mountingErrorMm = 15;
  EXPECT_THAT(Reported(CheckWithLibrary(MakeShoot(options, kCornerNoise))),
              IsSupersetOf({"mountSags warning", "mountingOff error"}));
  options.sagMm = 0;
  options.chart.bowMetres = 0.0005;
  EXPECT_THAT(Reported(CheckWithLibrary(MakeShoot(options, kCornerNoise))),
              IsSupersetOf({"chartNotFlat error", "mountingOff error"}));
}

TEST(CornerFlawsTest, ExplainAResultThatIsOff) {
  simulator::ShootOptions options = FortyNoisy(13);
  options.chart.bowMetres = 0.0005;
  const CrossCheck check = CheckWithLibrary(MakeShoot(options, kCornerNoise));
  EXPECT_LT(check.library->p, kCertain);
  // A shape of the chart that must be solved for leaves less to know the lens by.
  EXPECT_THAT(Reported(check), ElementsAre("chartNotFlat error", "lensNotSeen note"));
}

TEST(TrackerFlawsTest, ABentVolumeIsNamed) {
  simulator::ShootOptions options = FortyNoisy(14);
  options.volumeBendMm = 20;
  const CrossCheck check = CheckWithLibrary(MakeShoot(options, kCornerNoise));
  EXPECT_TRUE(Has<TrackerErrors>(check));
  EXPECT_EQ(Get<TrackerErrors>(check).follow, TrackerFlaw::kBentVolume);
}

TEST(TrackerFlawsTest, PosesThatAreLateAreNamedWithTheDelay) {
  simulator::ShootOptions options = FortyNoisy(21);
  options.delayMs = 40;
  KnownShoot shoot = MakeShoot(options, kCornerNoise);
  const CrossCheck check = CheckWithLibrary(shoot);
  ASSERT_TRUE(Has<TrackerErrors>(check));
  EXPECT_EQ(Get<TrackerErrors>(check).follow, TrackerFlaw::kDelay);
  EXPECT_NEAR(Get<TrackerErrors>(check).delaySeconds, 0.04, 0.008);
  // Rows that are too far apart in time, or have none, say nothing of the motion.
  for (const double scale : {10.0, std::nan("")}) {
    KnownShoot unknown = shoot;
    for (Photograph& photograph : unknown.observations.photographs) {
      photograph.seconds *= scale;
    }
    const CrossCheck other = CheckWithLibrary(unknown);
    EXPECT_FALSE(Has<TrackerErrors>(other) &&
                 Get<TrackerErrors>(other).follow == TrackerFlaw::kDelay);
  }
}

// Edges as they are blurred by the optics and by the motion during an exposure; 10 % to 90 % of the
// contrast are 2.56 standard deviations of the one, and 80 % of the other's length.
void BlurEdges(const simulator::Shoot& simulated, double exposureMs, Observations& observations) {
  simulator::Random random(simulated.options.seed, simulator::Draw::kSeat);
  const auto columns = static_cast<std::size_t>(observations.boardColumns);
  for (std::size_t i = 0; i < observations.photographs.size(); ++i) {
    Photograph& photograph = observations.photographs[i];
    const auto middleAt = [&](double milliseconds) {
      const auto pose = simulator::ChartBefore(simulated, i, milliseconds);
      return simulated.lens.Project(pose * simulated.options.chart.Corners()[22]);
    };
    const Eigen::Vector2d motion = middleAt(-exposureMs / 2) - middleAt(exposureMs / 2);
    const auto widthAcross = [&](const Eigen::Vector2d& edge) {
      const double length = std::abs(Eigen::Vector2d(-edge.y(), edge.x()).normalized().dot(motion));
      return std::hypot(2.56, 0.8 * length) * (1 + 0.03 * random.Normal());
    };
    const auto& corners = photograph.corners;
    photograph.edgeWidths = {widthAcross(corners[columns - 1] - corners.front()),
                             widthAcross(corners[corners.size() - columns] - corners.front())};
  }
}

CrossCheck CheckBlurred(double delayMs, std::uint64_t seed) {
  simulator::ShootOptions options = FortyNoisy(seed);
  options.tremorMmPerSecond = 50;
  options.delayMs = delayMs;
  const simulator::Shoot simulated = simulator::SimulateShoot(options);
  KnownShoot shoot = MakeShoot(simulated, kCornerNoise);
  BlurEdges(simulated, 10, shoot.observations);
  return CheckWithLibrary(shoot);
}

TEST(NotStillTest, ErrorsThatFollowTheBlurAreNamed) {
  for (std::uint64_t seed = 31; seed < 36; ++seed) {
    SCOPED_TRACE(seed);
    const CrossCheck check = CheckBlurred(30, seed);
    ASSERT_TRUE(Has<NotStill>(check));
    EXPECT_LT(Get<NotStill>(check).p, 1e-3);
    EXPECT_GT(Get<NotStill>(check).mm, 1);
  }
}

TEST(NotStillTest, BlurWithoutErrorsIsNot) {
  for (std::uint64_t seed = 31; seed < 51; ++seed) {
    EXPECT_FALSE(Has<NotStill>(CheckBlurred(0, seed))) << "seed " << seed;
  }
}

TEST(NotStillTest, RowsThatAreCloseInTimeShowADelay) {
  const KnownShoot shoot = MakeShoot(FortyNoisy(31), kCornerNoise);
  EXPECT_FALSE(AreRowsOfAFilm(shoot.observations));
  const CrossCheck check = CheckWithLibrary(shoot);
  ASSERT_TRUE(check.delayKnownToSeconds);
  EXPECT_GT(*check.delayKnownToSeconds, 0.0005);
  EXPECT_LT(*check.delayKnownToSeconds, 0.02);
  for (const double scale : {10.0, 0.0, -1.0, std::nan("")}) {
    KnownShoot apart = shoot;
    for (Photograph& photograph : apart.observations.photographs) {
      photograph.seconds *= scale;
    }
    EXPECT_FALSE(CheckWithLibrary(apart).delayKnownToSeconds) << scale;
    EXPECT_FALSE(AreRowsOfAFilm(apart.observations)) << scale;
  }
  KnownShoot film = shoot;
  for (Photograph& photograph : film.observations.photographs) {
    photograph.seconds /= 10;
  }
  EXPECT_TRUE(AreRowsOfAFilm(film.observations));
}

TEST(TrackerFlawsTest, ALooseTrackerIsNamedWithThePhotographsOfItsSecondSeat) {
  simulator::ShootOptions options = FortyNoisy(15);
  options.looseMm = 5;
  const simulator::Shoot simulated = simulator::SimulateShoot(options);
  const KnownShoot shoot = MakeShoot(simulated, kCornerNoise);
  const CrossCheck check = CheckWithLibrary(shoot);
  ASSERT_THAT(Reported(check), Contains("trackerLoose error"));
  const auto& loose = Get<TrackerLoose>(check);
  EXPECT_EQ(loose.tracker, Tracker::kCamera);
  EXPECT_NEAR(loose.mm, 5, 0.5);
  // The photographs of one seat are 5 mm from those of the other, and close to each other.
  const auto seatOf = [&](std::size_t i) {
    const simulator::Photograph& photograph = simulated.photographs[i];
    return (photograph.Transform_Base_Tc.inverse() * photograph.trackedTc).translation().x() > 0;
  };
  ASSERT_FALSE(loose.photographs.empty());
  for (std::size_t i = 0; i < check.photographs; ++i) {
    const bool isSecond = std::count(loose.photographs.begin(), loose.photographs.end(), i) > 0;
    EXPECT_EQ(isSecond, seatOf(i) == seatOf(loose.photographs.front())) << i;
  }
}

TEST(TrackerFlawsTest, ErrorsThatNeighboursShareWidenTheInterval) {
  simulator::ShootOptions options = FortyNoisy(16);
  options.noiseCorrelation = 0.9;
  const CrossCheck check = CheckWithLibrary(MakeShoot(options, kCornerNoise));
  EXPECT_THAT(Reported(check), Contains("structuredErrors note"));
  EXPECT_GT(check.standardErrorCamTcByClusters.rotationDegrees.norm(),
            1.2 * check.standardErrorCamTcByNoise.rotationDegrees.norm());
  EXPECT_EQ(check.standardErrorCamTc.rotationDegrees,
            check.standardErrorCamTcByClusters.rotationDegrees);
}

TEST(TrackerFlawsTest, TheLargerIntervalIsReported) {
  for (std::uint64_t seed = 20; seed < 30; ++seed) {
    const CrossCheck check = Check(MakeShoot(FortyNoisy(seed), kCornerNoise).observations);
    const auto larger = check.standardErrorCamTcByNoise.translationMm.cwiseMax(
        check.standardErrorCamTcByClusters.translationMm);
    EXPECT_LT((check.standardErrorCamTc.translationMm - larger).norm(), 1e-9) << seed;
  }
}

TEST(RepeatedPoseTest, RowsThatRepeatAPoseCountOnce) {
  const KnownShoot once = MakeShoot(FortyNoisy(17), kCornerNoise);
  KnownShoot thrice = once;
  for (int copy = 0; copy < 2; ++copy) {
    const auto& photographs = once.observations.photographs;
    thrice.observations.photographs.insert(thrice.observations.photographs.end(),
                                           photographs.begin(), photographs.end());
  }
  const CrossCheck of40 = Check(once.observations);
  const CrossCheck of120 = Check(thrice.observations);
  EXPECT_EQ(of120.photographs, 120U);
  EXPECT_EQ(of120.used, 120U);
  EXPECT_LT((of40.Transform_Cam_Tc - of120.Transform_Cam_Tc).norm(), 1e-5);
  // The corners are known better, the trackers are not.
  const double ratio =
      of120.standardErrorCamTc.translationMm.norm() / of40.standardErrorCamTc.translationMm.norm();
  EXPECT_GT(ratio, 0.85);
  EXPECT_LE(ratio, 1.05);
  EXPECT_TRUE(of120.perPhotograph[119].used);
  EXPECT_NEAR(of120.perPhotograph[119].mm, of40.perPhotograph[39].mm, 0.05);
}

// Both trackers stood still for the recorder, but not in front of the camera.
TEST(RepeatedPoseTest, ARowThatWasNotUpdatedIsNotTheSamePose) {
  KnownShoot shoot = MakeShoot(FortyNoisy(18), kCornerNoise);
  auto& photographs = shoot.observations.photographs;
  photographs[7].camera = photographs[6].camera;
  photographs[7].chart = photographs[6].chart;
  const CrossCheck check = Check(shoot.observations);
  EXPECT_TRUE(check.perPhotograph[6].used);
  EXPECT_FALSE(check.perPhotograph[7].used);
}

TEST(TurntableTest, WhatIsUndeterminedHasNoInterval) {
  simulator::ShootOptions options = FortyNoisy(19);
  options.turntable = true;
  const CrossCheck check = Check(MakeShoot(options, kCornerNoise).observations);
  ASSERT_GT(check.diversity.amplification, 10);
  EXPECT_FALSE(std::isfinite(check.standardErrorCamTc.translationMm.x()));
  EXPECT_FALSE(std::isfinite(check.standardErrorTrChart.rotationDegrees.z()));
}

}  // namespace
}  // namespace trackedcam::crosscheck
