#include "crosscheck/chart_pose.h"

#include <gmock/gmock.h>

#include "crosscheck/corner_model.h"
#include "crosscheck/kit/known_shoot.h"
#include "simulator/shoot.h"
#include "support/transform_matchers.h"

namespace trackedcam::crosscheck {
namespace {

using test::IsNear;
using test::IsTransformNear;

TEST(ChartPoseTest, TheBoardIsCountedRowByRow) {
  const std::vector<Eigen::Vector3d> points = Board{3, 2, 0.5, {}}.Points();
  ASSERT_EQ(points.size(), 6U);
  EXPECT_EQ(points[2], Eigen::Vector3d(1, 0, 0));
  EXPECT_EQ(points[3], Eigen::Vector3d(0, 0.5, 0));
}

TEST(ChartPoseTest, ExactCornersGiveTheTruePose) {
  const simulator::Shoot shoot = simulator::SimulateShoot(test::FortyPhotographs(21));
  const Observations observations = test::MakeShoot(shoot).observations;
  const auto board = Board{9, 6, observations.square, {}}.Points();
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
  const auto board = Board{9, 6, observations.square, {}}.Points();
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

// By how much more the corners disagree with the pose that fits them best if the model is another:
// a plain reference of what ModelEquations say.
TEST(ChartPoseTest, TheModelEquationsAreTheDerivativesOfTheSquares) {
  const Observations observations = test::MakeShoot(test::FortyPhotographs(23)).observations;
  CornerModel model = {observations.lens, {9, 6, observations.square, {}}};
  const auto& corners = observations.photographs[0].corners;  // exact: no second derivatives
  const auto at = FindChartPose(model.lens, model.board.Points(), corners);
  ASSERT_TRUE(at);
  const ModelEquations equations = ModelEquationsAt(*at, model, corners);
  CornerVector step;
  step << 3e-3, -2e-3, 1e-3, 4e-3, 1e-6, -2e-6, 1e-6, -2e-6, 3e-6, 1e-5, 1e-6, -2e-6, 1e-6;
  model.SetParameters(model.Parameters() + step);
  const auto beside =
      RefineChartPose(at->Transform_Cam_Chart, model.lens, model.board.Points(), corners);
  ASSERT_TRUE(beside);
  EXPECT_NEAR(beside->equations.squares / step.dot(equations.information * step), 1, 1e-2);
  EXPECT_THAT(beside->Transform_Cam_Chart.matrix(),
              IsNear((Exp(equations.pose * step) * at->Transform_Cam_Chart).matrix(), 1e-8));
}

TEST(ChartPoseTest, WhatIsBehindTheCameraHasNoEquations) {
  Pose behind = Pose::Identity();
  behind.translation().z() = -1;
  const auto board = Board{9, 6, 0.03, {}}.Points();
  EXPECT_FALSE(EquationsAt(behind, {1920, 1080, 1500, 1500, 960, 540, 0, 0}, board,
                           std::vector<Eigen::Vector2d>(54, Eigen::Vector2d::Zero())));
}

}  // namespace
}  // namespace trackedcam::crosscheck
