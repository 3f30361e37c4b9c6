// Each finding is said where it must be, and not where it must not.

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include <Eigen/Eigenvalues>
#include <gmock/gmock.h>

#include "crosscheck/cross_check.h"
#include "crosscheck/kit/known_shoot.h"
#include "crosscheck/kit/reported.h"
#include "crosscheck/kit/shoot_flaws.h"

namespace trackedcam::crosscheck {
namespace {

using test::FortyNoisy;
using test::FortyPhotographs;
using test::Get;
using test::KnownShoot;
using test::MakeShoot;
using test::Reported;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

CrossCheck CheckWithLibrary(KnownShoot shoot) {
  shoot.observations.library = test::BelievingTheMounting(shoot).matrix();
  return Check(shoot.observations);
}

TEST(FindingsTest, NothingIsSaidOfACleanShoot) {
  for (std::uint64_t seed = 1; seed <= 5; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    EXPECT_THAT(Reported(CheckWithLibrary(MakeShoot(FortyNoisy(seed), 0.05))), IsEmpty());
  }
}

// From there the corners hardly show the lens, and nothing of it in most of the image; its errors
// move all photographs alike.
TEST(FindingsTest, AChartThatIsFarAwayMakesTheLensUncertainAndNotTheTrackers) {
  for (std::uint64_t seed = 1; seed <= 4; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    simulator::Shoot simulated = simulator::SimulateShoot(FortyNoisy(seed));
    test::StepBack(simulated, 8);  // 3.3 m
    const CrossCheck check = Check(MakeShoot(simulated, 0.05).observations);
    EXPECT_THAT(Reported(check), ElementsAre("lensNotSeen warning", "lensUncertain warning"));
    EXPECT_LT(check.trackerNoiseMm, 1);
    EXPECT_NEAR(check.trackerNoiseDegrees, 0.05, 0.01);
  }
}

TEST(FindingsTest, SlippedPhotographsAreNamedTheWorstFirst) {
  KnownShoot shoot = MakeShoot(FortyNoisy(3), 0.05);
  const auto slip = [&](std::size_t i, double mm) {
    test::Displace(shoot.observations.photographs[i].chart,
                   Pose(Eigen::Translation3d(mm * 1e-3, 0, 0)));
  };
  slip(5, 10);
  slip(30, 40);
  slip(12, 20);
  const CrossCheck check = CheckWithLibrary(shoot);
  ASSERT_THAT(Reported(check), ElementsAre("badPhotographs warning"));
  const BadPhotographs& finding = Get<BadPhotographs>(check);
  EXPECT_THAT(finding.photographs, ElementsAre(30, 12, 5));
  EXPECT_NEAR(finding.worstMm, 40, 2.5);
  EXPECT_NEAR(finding.share, 3 / 40.0, 1e-12);
  EXPECT_FALSE(check.perPhotograph[30].used);
  EXPECT_NEAR(check.perPhotograph[12].mm, 20, 2.5);
  EXPECT_EQ(check.perPhotograph[12].whyLeftOut, std::nullopt);
}

TEST(FindingsTest, BadPhotographsAreAnErrorAboveThirtyPercent) {
  simulator::ShootOptions options = FortyNoisy(4);
  options.outliers = 14;
  const CrossCheck check = CheckWithLibrary(MakeShoot(options, 0.05));
  EXPECT_THAT(Reported(check), Contains("badPhotographs error"));
  EXPECT_EQ(Get<BadPhotographs>(check).photographs.size(), 14U);
}

TEST(FindingsTest, ExchangedRowsAndABoardReadFromItsEndAreExplained) {
  KnownShoot shoot = MakeShoot(FortyNoisy(5), 0.05);
  auto& photographs = shoot.observations.photographs;
  std::swap(photographs[8].camera, photographs[21].camera);
  std::swap(photographs[8].chart, photographs[21].chart);
  std::reverse(photographs[33].corners.begin(), photographs[33].corners.end());
  const CrossCheck check = CheckWithLibrary(shoot);
  EXPECT_EQ(check.perPhotograph[8].whyLeftOut, WhyLeftOut::kFitsTrackersOf);
  EXPECT_EQ(check.perPhotograph[8].fitsTrackersOf, 21U);
  EXPECT_EQ(check.perPhotograph[21].fitsTrackersOf, 8U);
  EXPECT_EQ(check.perPhotograph[33].whyLeftOut, WhyLeftOut::kFirstCornerAtOtherEnd);
  EXPECT_THAT(Get<BadPhotographs>(check).photographs, testing::UnorderedElementsAre(8, 21, 33));
}

TEST(FindingsTest, ATrackerThatMovedIsNamedWithItsPlace) {
  for (const Tracker tracker : {Tracker::kCamera, Tracker::kChart}) {
    for (const std::size_t before : {8U, 20U, 31U}) {
      SCOPED_TRACE(std::string(Name(tracker)) + " before " + std::to_string(before));
      KnownShoot shoot = MakeShoot(FortyNoisy(6), 0.05);
      test::MoveTracker(shoot, tracker, before, 10, 1);
      const CrossCheck check = CheckWithLibrary(shoot);
      // What the step explains is neither bad nor noise nor a wrong mounting.
      ASSERT_THAT(Reported(check), ElementsAre("trackerMoved error"));
      const auto& finding = Get<TrackerMoved>(check);
      EXPECT_EQ(finding.tracker, tracker);
      EXPECT_EQ(finding.before, before);
      EXPECT_NEAR(finding.mm, 10, 1.5);
      EXPECT_NEAR(finding.degrees, 1, 0.1);
    }
  }
}

TEST(FindingsTest, PhotographsThatTheStepDoesNotExplainStayBad) {
  KnownShoot shoot = MakeShoot(FortyNoisy(6), 0.05);
  test::MoveTracker(shoot, Tracker::kCamera, 30, 10, 1);
  test::Displace(shoot.observations.photographs[10].chart, Pose(Eigen::Translation3d(0.04, 0, 0)));
  const CrossCheck check = CheckWithLibrary(shoot);
  ASSERT_THAT(Reported(check), ElementsAre("trackerMoved error", "badPhotographs warning"));
  EXPECT_THAT(Get<BadPhotographs>(check).photographs, ElementsAre(10));
}

TEST(FindingsTest, SquaresOfAnotherSizeAreAWarning) {
  KnownShoot shoot = MakeShoot(FortyNoisy(7), 0.05);
  test::MisstateSquares(shoot, 1.03);
  const CrossCheck check = CheckWithLibrary(shoot);
  EXPECT_THAT(Reported(check), Contains("squareSize warning"));
  EXPECT_THAT(Reported(check), Not(Contains("mountingOff error")));
  EXPECT_NEAR(check.square.factor, 1.03, 0.005);
  EXPECT_LT(std::abs(check.square.factor - 1.03), 4 * check.square.standardError);
}

TEST(FindingsTest, ADriftMakesTheHalvesDiffer) {
  KnownShoot shoot = MakeShoot(FortyNoisy(8), 0.05);
  test::Creep(shoot, 5);
  const CrossCheck check = CheckWithLibrary(shoot);
  ASSERT_TRUE(check.halves);
  EXPECT_THAT(Reported(check),
              testing::AnyOf(Contains("halvesDiffer warning"), Contains("trackerMoved error")));
  EXPECT_NEAR(check.halves->offMm, 2.5, 1);  // the middles of the halves lie so far apart
}

// One limit for all: noisier trackers never get a better verdict than quiet ones.
TEST(FindingsTest, AResultThatIsNotKnownWellEnoughIsAWarning) {
  simulator::ShootOptions options = FortyNoisy(15);
  options.trackerNoiseMm = 1;
  options.trackerNoiseDegrees = 0.1;
  simulator::Shoot far = simulator::SimulateShoot(options);
  test::StepBack(far, 3);
  KnownShoot shoot = MakeShoot(far, 0.02);
  const CrossCheck check = CheckWithLibrary(shoot);
  ASSERT_THAT(Reported(check), Contains("trackersUncertain warning"));
  const auto& uncertain = Get<TrackersUncertain>(check);
  EXPECT_GT(uncertain.found.mm, 2);
  EXPECT_EQ(uncertain.found.mm, check.t95 * check.standardErrorCamTc.translationMm.maxCoeff());
  EXPECT_EQ(uncertain.needed.mm, 2);
  EXPECT_NEAR(std::hypot(uncertain.byLens.mm, uncertain.byTrackers.mm), uncertain.found.mm, 1e-9);
  // From nearer, the same noise does less.
  ASSERT_TRUE(uncertain.closerMetres);
  EXPECT_LT(*uncertain.closerMetres, 0.7 * uncertain.distanceMetres);

  shoot.observations.goodEnough = {1.01 * uncertain.found.mm, 0.5};
  EXPECT_THAT(Reported(CheckWithLibrary(shoot)), Not(Contains("trackersUncertain warning")));
}

TEST(FindingsTest, ALensThatIsLittleKnownIsNamedAsTheCause) {
  simulator::ShootOptions options = FortyNoisy(9);
  options.trackerNoiseMm = 0.05;
  options.trackerNoiseDegrees = 0.01;
  simulator::Shoot far = simulator::SimulateShoot(options);
  test::StepBack(far, 3);
  const CrossCheck check = CheckWithLibrary(MakeShoot(far, 0.3));
  ASSERT_THAT(Reported(check), Contains("lensUncertain warning"));
  const auto& uncertain = Get<LensUncertain>(check);
  EXPECT_GT(uncertain.byLens.mm, uncertain.byTrackers.mm);
  EXPECT_TRUE(uncertain.closerMetres);
}

// Whoever needs half a millimetre must know of half of it.
TEST(FindingsTest, AMountingThatIsCertainlyOffIsADoubtAtLeast) {
  simulator::ShootOptions options = FortyPhotographs(16);
  options.trackerNoiseMm = 0.05;
  options.trackerNoiseDegrees = 0.01;
  options.mountingErrorMm = 1.5;
  KnownShoot shoot = MakeShoot(options, 0.02);
  EXPECT_THAT(Reported(CheckWithLibrary(shoot)), ElementsAre("mountingOff warning"));
  options.mountingErrorMm = 0.5;
  shoot = MakeShoot(options, 0.02);
  EXPECT_THAT(Reported(CheckWithLibrary(shoot)), IsEmpty());
  shoot.observations.goodEnough = {0.5, 0.05};
  shoot.observations.scaleUncertainty = 1e-5;  // the ruler must be as good
  EXPECT_THAT(Reported(CheckWithLibrary(shoot)), ElementsAre("mountingOff warning"));
}

TEST(FindingsTest, NoisyTrackersAreAWarning) {
  simulator::ShootOptions options = FortyNoisy(10);
  options.trackerNoiseMm = 3;
  options.trackerNoiseDegrees = 0.3;
  const CrossCheck check = CheckWithLibrary(MakeShoot(options, 0.05));
  EXPECT_THAT(Reported(check), ElementsAre("trackersNoisy warning", "trackersUncertain warning"));
  EXPECT_NEAR(check.trackerNoiseMm, 3, 0.6);
  EXPECT_NEAR(check.trackerNoiseDegrees, 0.3, 0.06);
}

// The mounting is right, but one lost row can spoil the library's result.
TEST(FindingsTest, AResultThatIsApartIsAnErrorFromTwoMillimetresOn) {
  KnownShoot shoot = MakeShoot(FortyNoisy(11), 0.05);
  const auto checkApart = [&](double metres) {
    shoot.observations.library =
        (shoot.Transform_Cam_Tc * Pose(Eigen::Translation3d(metres, 0, 0))).matrix();
    return Check(shoot.observations);
  };
  const CrossCheck check = checkApart(0.01);
  ASSERT_THAT(Reported(check), ElementsAre("libraryApart error"));
  EXPECT_NEAR(Get<LibraryApart>(check).offMm, 10, 1.5);
  EXPECT_FALSE(Get<LibraryApart>(check).mountingUnknown);
  EXPECT_THAT(Reported(checkApart(0.0015)), ElementsAre("libraryApart warning"));
}

TEST(FindingsTest, AResultThatIsApartIsAnErrorWhereTheMountingIsNotKnown) {
  KnownShoot shoot = MakeShoot(FortyNoisy(11), 0.05);
  shoot.observations.mounting = std::nullopt;
  shoot.observations.library =
      (shoot.Transform_Cam_Tc * Pose(Eigen::Translation3d(0.01, 0, 0))).matrix();
  const CrossCheck check = Check(shoot.observations);
  ASSERT_THAT(Reported(check), ElementsAre("libraryApart error"));
  EXPECT_TRUE(Get<LibraryApart>(check).mountingUnknown);
  shoot.observations.library = shoot.Transform_Cam_Tc.matrix();
  EXPECT_THAT(Reported(Check(shoot.observations)), IsEmpty());
}

TEST(FindingsTest, TooLittleTurningSuggestsNoMounting) {
  simulator::ShootOptions options = FortyNoisy(12);
  options.mountingErrorMm = 27;
  for (const auto& [share, said] : {std::pair(0.5, "tooLittleRotation warning"),
                                    std::pair(0.125, "tooLittleRotation warning")}) {
    simulator::Shoot simulated = simulator::SimulateShoot(options);
    test::TurnLess(simulated, share);
    const CrossCheck check = CheckWithLibrary(MakeShoot(simulated, 0.05));
    EXPECT_THAT(Reported(check), Contains(said));
    EXPECT_EQ(check.mounting.has_value(), share > 0.2);
    if (share < 0.2) {
      EXPECT_THAT(Reported(check), Not(Contains("mountingOff error")));
    }
  }
}

// The result may be exact: it cannot be checked.
TEST(FindingsTest, NothingIsCertainWithTooLittleTurning) {
  simulator::ShootOptions options = FortyNoisy(12);
  options.mountingErrorMm = 27;
  simulator::Shoot simulated = simulator::SimulateShoot(options);
  test::TurnLess(simulated, 0.125);
  const CrossCheck check = CheckWithLibrary(MakeShoot(simulated, 0.05));
  for (const Finding& finding : check.findings) {
    EXPECT_NE(finding.severity, Severity::kError) << Name(finding.kind);
  }
  EXPECT_GT(check.diversity.amplification, kMostAmplification);
  EXPECT_TRUE(std::isnan(check.library->p));
  EXPECT_TRUE(std::isnan(check.nominalMounting->p));
  EXPECT_EQ(check.nominalMounting->likelyMistake, std::nullopt);
  EXPECT_FALSE(check.standardErrorCamTc.translationMm.allFinite());
  EXPECT_FALSE(check.comparisonCamTc.isCompared);
  EXPECT_TRUE(std::isnan(check.comparisonCamTc.translation[0].found));
  EXPECT_THAT(check.onScreen, IsEmpty());
}

// By the definition of the amplification: the largest singular value of the mean rotation.
double Amplification(const std::vector<Eigen::Matrix3d>& rotations) {
  Eigen::Matrix3d mean = Eigen::Matrix3d::Zero();
  for (const Eigen::Matrix3d& rotation : rotations) {
    mean += rotation / static_cast<double>(rotations.size());
  }
  const double largest = mean.operatorNorm();
  return 1 / std::sqrt(1 - largest * largest);
}

TEST(FindingsTest, WhoeverTurnsTheChartAsAdvisedHasTurnedItEnough) {
  for (const double share : {0.5, 0.25, 0.125}) {
    SCOPED_TRACE(share);
    simulator::Shoot simulated = simulator::SimulateShoot(FortyNoisy(13));
    test::TurnLess(simulated, share);
    const CrossCheck check = CheckWithLibrary(MakeShoot(simulated, 0.05));
    const auto& finding = Get<TooLittleRotation>(check);
    std::vector<Eigen::Matrix3d> rotations;
    for (const simulator::Photograph& photograph : simulated.photographs) {
      rotations.emplace_back(photograph.Transform_Cam_Chart.linear());
    }
    EXPECT_NEAR(Amplification(rotations), finding.amplification, 0.05 * finding.amplification);

    const Eigen::Vector3d& axis = finding.axisInChart;
    const Eigen::Vector3d across = axis.cross(check.diversity.weakestAxisInChart).normalized();
    const double radians = finding.rotationDegrees * EIGEN_PI / 180;
    for (std::size_t i = 0; i < simulated.photographs.size(); ++i) {
      const bool isSecond = finding.axes == 2 && i % 4 >= 2;
      const Eigen::AngleAxisd turn(i % 2 == 0 ? radians : -radians, isSecond ? across : axis);
      rotations.emplace_back(rotations[i] * turn.toRotationMatrix());
    }
    EXPECT_LT(Amplification(rotations), 3.3);
    EXPECT_GT(Amplification(rotations), 2.5);
  }
}

TEST(FindingsTest, ErrorsStandBeforeWarnings) {
  simulator::ShootOptions options = FortyNoisy(14);
  options.outliers = 4;
  options.mountingErrorMm = 27;
  options.mountingErrorDegrees = 1;
  EXPECT_THAT(Reported(CheckWithLibrary(MakeShoot(options, 0.05))),
              ElementsAre("mountingOff error", "badPhotographs warning"));
}

}  // namespace
}  // namespace trackedcam::crosscheck
