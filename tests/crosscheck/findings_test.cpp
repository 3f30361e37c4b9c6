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

TEST(FindingsTest, ALensThatIsLittleKnownIsAWarning) {
  simulator::ShootOptions options = FortyNoisy(9);
  options.photographs = 12;
  options.trackerNoiseMm = 0.05;
  options.trackerNoiseDegrees = 0.01;
  EXPECT_THAT(Reported(CheckWithLibrary(MakeShoot(options, 0.5))),
              Contains("lensUncertain warning"));
  EXPECT_THAT(Reported(CheckWithLibrary(MakeShoot(options, 0.02))),
              Not(Contains("lensUncertain warning")));
}

TEST(FindingsTest, NoisyTrackersAreAWarning) {
  simulator::ShootOptions options = FortyNoisy(10);
  options.trackerNoiseMm = 3;
  options.trackerNoiseDegrees = 0.3;
  const CrossCheck check = CheckWithLibrary(MakeShoot(options, 0.05));
  EXPECT_THAT(Reported(check), ElementsAre("trackersNoisy warning"));
  EXPECT_NEAR(check.trackerNoiseMm, 3, 0.6);
  EXPECT_NEAR(check.trackerNoiseDegrees, 0.3, 0.06);
}

TEST(FindingsTest, AResultThatIsApartThoughTheMountingIsRightIsAWarning) {
  KnownShoot shoot = MakeShoot(FortyNoisy(11), 0.05);
  shoot.observations.library =
      (shoot.Transform_Cam_Tc * Pose(Eigen::Translation3d(0.01, 0, 0))).matrix();
  const CrossCheck check = Check(shoot.observations);
  ASSERT_THAT(Reported(check), ElementsAre("libraryApart warning"));
  EXPECT_NEAR(Get<LibraryApart>(check).offMm, 10, 1.5);
  EXPECT_FALSE(Get<LibraryApart>(check).mountingUnknown);
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
  for (const auto& [share, said] :
       {std::pair(0.5, "tooLittleRotation warning"), std::pair(0.125, "tooLittleRotation error")}) {
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
