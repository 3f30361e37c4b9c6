#include "crosscheck/chart_pose.h"

#include <gmock/gmock.h>

#include "crosscheck/kit/known_shoot.h"
#include "simulator/shoot.h"
#include "support/transform_matchers.h"

namespace trackedcam::crosscheck {
namespace {

using test::IsNear;
using test::IsTransformNear;

TEST(ChartPoseTest, TheBoardIsCountedRowByRow) {
  const std::vector<Eigen::Vector3d> points = BoardPoints(3, 2, 0.5);
  ASSERT_EQ(points.size(), 6U);
  EXPECT_EQ(points[2], Eigen::Vector3d(1, 0, 0));
  EXPECT_EQ(points[3], Eigen::Vector3d(0, 0.5, 0));
}

TEST(ChartPoseTest, ExactCornersGiveTheTruePose) {
  const simulator::Shoot shoot = simulator::SimulateShoot(test::FortyPhotographs(21));
  const Observations observations = test::MakeShoot(shoot).observations;
  const auto board = BoardPoints(9, 6, observations.square);
  for (std::size_t i = 0; i < shoot.photographs.size(); ++i) {
    const auto found = FindChartPose(observations.lens, board, observations.photographs[i].corners);
    ASSERT_TRUE(found);
    EXPECT_THAT(found->Transform_Cam_Chart.matrix(),
                IsTransformNear(shoot.photographs[i].Transform_Cam_Chart.matrix(), 1e-9, 1e-7));
    EXPECT_LT(found->equations.squares, 1e-15);
  }
}

TEST(ChartPoseTest, NoNeighbourIsNearerToNoisyCorners) {
  const Observations observations = test::MakeShoot(test::FortyPhotographs(22), 0.5).observations;
  const auto board = BoardPoints(9, 6, observations.square);
  const auto& corners = observations.photographs[3].corners;
  const auto found = FindChartPose(observations.lens, board, corners);
  ASSERT_TRUE(found);
  for (int k = 0; k < 6; ++k) {
    for (const double step : {-1e-5, 1e-5}) {
      const auto beside = EquationsAt(Exp(step * Twist::Unit(k)) * found->Transform_Cam_Chart,
                                      observations.lens, board, corners);
      ASSERT_TRUE(beside);
      EXPECT_GT(beside->squares, found->equations.squares);
    }
  }
}

// The equations say how the sum of squares changes with pose and lens.
TEST(ChartPoseTest, TheEquationsAreTheDerivativesOfTheSquares) {
  const Observations observations = test::MakeShoot(test::FortyPhotographs(23)).observations;
  const auto board = BoardPoints(9, 6, observations.square);
  const auto& corners = observations.photographs[0].corners;  // exact: no second derivatives
  const Pose truth = FindChartPose(observations.lens, board, corners)->Transform_Cam_Chart;
  Lens lens = observations.lens;
  const Twist twist = (Twist() << 1, -2, 3, 2, 1, -1).finished() * 1e-5;
  const Twist lensStep = (Twist() << 3e-3, -2e-3, 1e-3, 4e-3, 1e-6, -2e-6).finished();
  const auto at = EquationsAt(truth, lens, board, corners);
  ASSERT_TRUE(at);
  lens.fx += lensStep[0];
  lens.fy += lensStep[1];
  lens.cx += lensStep[2];
  lens.cy += lensStep[3];
  lens.k1 += lensStep[4];
  lens.k2 += lensStep[5];
  const auto beside = EquationsAt(Exp(twist) * truth, lens, board, corners);
  ASSERT_TRUE(beside);
  const double expected = twist.dot(at->byPose * twist) + 2 * twist.dot(at->byPoseLens * lensStep) +
                          lensStep.dot(at->byLens * lensStep);
  EXPECT_NEAR(beside->squares / expected, 1, 1e-2);
}

TEST(ChartPoseTest, WhatIsBehindTheCameraHasNoEquations) {
  Pose behind = Pose::Identity();
  behind.translation().z() = -1;
  const auto board = BoardPoints(9, 6, 0.03);
  EXPECT_FALSE(EquationsAt(behind, {1920, 1080, 1500, 1500, 960, 540, 0, 0}, board,
                           std::vector<Eigen::Vector2d>(54, Eigen::Vector2d::Zero())));
}

}  // namespace
}  // namespace trackedcam::crosscheck
