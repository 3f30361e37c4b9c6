#include "simulator/shoot.h"

#include <array>
#include <cmath>

#include <gtest/gtest.h>

#include "simulator/mounting.h"

namespace trackedcam::simulator {
namespace {

double Angle(const Eigen::Isometry3d& transform) {
  return Degrees(Eigen::AngleAxisd(transform.linear()).angle());
}

class ShootTest : public testing::TestWithParam<std::uint64_t> {
 protected:
  ShootTest() : trace_(__FILE__, __LINE__, "seed " + std::to_string(GetParam())) {
    options.seed = GetParam();
  }

  ShootOptions options;

 private:
  testing::ScopedTrace trace_;
};

INSTANTIATE_TEST_SUITE_P(Seeds, ShootTest, testing::Values(1, 2, 3, 0xFFFFFFFFFFFFFFFF));

TEST_P(ShootTest, TheSameSeedGivesTheSameShoot) {
  options.trackerNoiseMm = 1;
  options.outliers = 3;
  const Shoot first = SimulateShoot(options);
  const Shoot second = SimulateShoot(options);
  EXPECT_EQ(first.Transform_Cam_Tc.matrix(), second.Transform_Cam_Tc.matrix());
  EXPECT_EQ(first.nominalMounting.anglesDegrees, second.nominalMounting.anglesDegrees);
  for (const auto transform :
       {&Photograph::Transform_Cam_Chart, &Photograph::trackedTc, &Photograph::trackedTr}) {
    EXPECT_EQ(first.Matrices(transform), second.Matrices(transform));
  }
}

TEST_P(ShootTest, AnotherSeedGivesAnotherShoot) {
  const Shoot first = SimulateShoot(options);
  options.seed += 1;
  const Shoot second = SimulateShoot(options);
  EXPECT_FALSE(first.Transform_Cam_Tc.isApprox(second.Transform_Cam_Tc, 1e-3));
  EXPECT_FALSE(first.photographs[0].Transform_Cam_Chart.isApprox(
      second.photographs[0].Transform_Cam_Chart, 1e-3));
}

TEST_P(ShootTest, TheLoopOfTransformsClosesInEachPhotograph) {
  options.mountingErrorMm = 5;
  options.mountingErrorDegrees = 2;
  const Shoot shoot = SimulateShoot(options);
  const Eigen::Isometry3d Transform_Chart_Tr = shoot.trueMounting.Transform().inverse();
  for (const Photograph& photograph : shoot.photographs) {
    const Eigen::Isometry3d Transform_Cam_Tc = photograph.Transform_Cam_Chart * Transform_Chart_Tr *
                                               photograph.Transform_Base_Tr.inverse() *
                                               photograph.Transform_Base_Tc;
    EXPECT_LT((Transform_Cam_Tc.matrix() - shoot.Transform_Cam_Tc.matrix()).norm(), 1e-12);
  }
}

TEST_P(ShootTest, TheTrackersReportTheTruthWithoutNoise) {
  const Shoot shoot = SimulateShoot(options);
  EXPECT_EQ(shoot.Matrices(&Photograph::trackedTc), shoot.Matrices(&Photograph::Transform_Base_Tc));
  EXPECT_EQ(shoot.Matrices(&Photograph::trackedTr), shoot.Matrices(&Photograph::Transform_Base_Tr));
}

TEST_P(ShootTest, CameraAndChartBothMove) {
  const Shoot shoot = SimulateShoot(options);
  for (const auto transform : {&Photograph::Transform_Base_Tc, &Photograph::Transform_Base_Tr}) {
    for (std::size_t i = 1; i < shoot.photographs.size(); ++i) {
      const Eigen::Isometry3d motion =
          (shoot.photographs[i - 1].*transform).inverse() * (shoot.photographs[i].*transform);
      EXPECT_GT(motion.translation().norm(), 0.01);
      EXPECT_GT(Angle(motion), 0.5);
    }
  }
}

TEST_P(ShootTest, TheCamerasTrackerHasADefiniteAxis) {
  const Shoot shoot = SimulateShoot(options);
  EXPECT_GT(Angle(shoot.Transform_Cam_Tc), 100);
  EXPECT_LT(Angle(shoot.Transform_Cam_Tc), 125);
}

TEST_P(ShootTest, TheCornersAreListedRowByRowWithinThePicture) {
  const Shoot shoot = SimulateShoot(options);
  const Chart& chart = options.chart;
  for (const Photograph& photograph : shoot.photographs) {
    ASSERT_EQ(photograph.corners.size(), static_cast<std::size_t>(chart.cols * chart.rows));
    const Eigen::Vector3d third(2 * chart.squareMetres, chart.squareMetres, 0);
    EXPECT_LT((photograph.corners[static_cast<std::size_t>(chart.cols) + 2] -
               shoot.lens.Project(photograph.Transform_Cam_Chart * third))
                  .norm(),
              1e-9);
    for (const Eigen::Vector2d& corner : photograph.corners) {
      EXPECT_GT(corner.minCoeff(), 0);
      EXPECT_LT(corner.x(), options.imageWidth);
      EXPECT_LT(corner.y(), options.imageHeight);
    }
  }
}

TEST_P(ShootTest, TheChartIsTiltedToAllSides) {
  const Shoot shoot = SimulateShoot(options);
  std::array<std::array<int, 2>, 2> toSide = {};
  for (const Photograph& photograph : shoot.photographs) {
    const Eigen::Vector3d normal = photograph.Transform_Cam_Chart.linear().col(2);
    EXPECT_GT(normal.head<2>().norm(), std::sin(Radians(10)));
    ++toSide[normal.x() > 0 ? 1 : 0][normal.y() > 0 ? 1 : 0];
  }
  for (const auto& halves : toSide) {
    EXPECT_GE(halves[0], 2);
    EXPECT_GE(halves[1], 2);
  }
}

TEST_P(ShootTest, TheNominalMountingIsOffByTheStatedError) {
  options.mountingErrorMm = 7;
  options.mountingErrorDegrees = 1.5;
  const Shoot shoot = SimulateShoot(options);
  const Eigen::Isometry3d error =
      shoot.nominalMounting.Transform().inverse() * shoot.trueMounting.Transform();
  EXPECT_NEAR(error.translation().norm(), 0.007, 1e-12);
  EXPECT_NEAR(Angle(error), 1.5, 1e-9);
}

TEST_P(ShootTest, TheNominalMountingIsTrueByDefault) {
  const Shoot shoot = SimulateShoot(options);
  EXPECT_TRUE(shoot.nominalMounting.Transform().isApprox(shoot.trueMounting.Transform(), 1e-14));
}

}  // namespace
}  // namespace trackedcam::simulator
