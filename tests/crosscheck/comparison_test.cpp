#include <cmath>

#include <Eigen/Geometry>
#include <gmock/gmock.h>

#include "crosscheck/cross_check.h"
#include "crosscheck/kit/known_shoot.h"
#include "crosscheck/reported_poses.h"
#include "crosscheck/solve.h"
#include "crosscheck/uncertainty.h"
#include "crosscheck/views.h"
#include "simulator/random.h"
#include "simulator/shoot.h"
#include "support/transform_matchers.h"

namespace trackedcam::crosscheck {
namespace {

using test::IsNear;

Pose Somewhere() {
  return Exp((Twist() << 0.4, -0.7, 0.2, 0.3, -0.2, 0.5).finished());
}

// Of many draws: how far the translation and the axes spread.
TEST(ComparisonTest, StandardErrorsAreTheSpreadOfDrawnTransforms) {
  const Twist spread = (Twist() << 1e-3, 2e-3, 3e-3, 1e-3, 4e-3, 2e-3).finished();
  const Matrix6d covariance = spread.cwiseAbs2().asDiagonal();
  simulator::Random random(41, simulator::Draw::kRig);
  const Pose pose = Somewhere();
  constexpr int kDraws = 20000;
  for (const bool isLeft : {true, false}) {
    Eigen::Vector3d translation = Eigen::Vector3d::Zero();
    Eigen::Vector3d rotation = Eigen::Vector3d::Zero();
    for (int i = 0; i < kDraws; ++i) {
      Twist twist;
      twist << random.NormalVector(), random.NormalVector();
      const Pose off = Exp(spread.cwiseProduct(twist));
      const Pose drawn = isLeft ? off * pose : pose * off;
      const Eigen::AngleAxisd between(Eigen::Matrix3d(drawn.linear() * pose.linear().transpose()));
      translation += (drawn.translation() - pose.translation()).cwiseAbs2() / kDraws;
      rotation += (between.angle() * between.axis()).cwiseAbs2() / kDraws;
    }
    const StandardError error = isLeft ? StandardErrorOfLeftTwist(covariance, pose)
                                       : StandardErrorOfRightTwist(covariance, pose);
    for (int k = 0; k < 3; ++k) {
      EXPECT_NEAR(error.translationMm[k] / (1e3 * std::sqrt(translation[k])), 1, 0.03);
      EXPECT_NEAR(error.rotationDegrees[k] * kDegree / std::sqrt(rotation[k]), 1, 0.03);
    }
  }
}

TEST(ComparisonTest, ADistanceIsThatOfOriginsAndTheAngle) {
  Pose other = Somewhere();
  other.translation() += Eigen::Vector3d(0.003, 0, 0.004);
  other.linear() = other.linear() * Eigen::AngleAxisd(2 * kDegree, Eigen::Vector3d::UnitY());
  const Offset offset = Between(Somewhere(), other);
  EXPECT_NEAR(offset.offMm, 5, 1e-9);
  EXPECT_NEAR(offset.offDegrees, 2, 1e-9);
}

TEST(NoiseTest, ALeverMakesTranslationOfRotation) {
  Pose at = Pose::Identity();
  at.translation().x() = 2;
  const NoiseCarriers carriers = CarriersOf(at, Pose::Identity());
  // At two metres along x, a rotation about z translates along y by twice its angle.
  EXPECT_NEAR(carriers.rotation(4, 4), 4, 1e-12);
  EXPECT_NEAR(carriers.rotation(3, 3), 0, 1e-12);
  EXPECT_THAT((carriers.rotation.topLeftCorner<3, 3>()),
              IsNear((2 * Eigen::Matrix3d::Identity()).eval(), 1e-12));
  EXPECT_THAT((carriers.translation.bottomRightCorner<3, 3>()),
              IsNear((2 * Eigen::Matrix3d::Identity()).eval(), 1e-12));
}

TEST(TrackerLoopTest, RowsGiveTheTruePoses) {
  const simulator::Shoot shoot = simulator::SimulateShoot(test::FortyPhotographs(42));
  const Observations observations = test::MakeShoot(shoot).observations;
  for (std::size_t i = 0; i < shoot.photographs.size(); ++i) {
    const simulator::Photograph& truth = shoot.photographs[i];
    const auto found = TransformOfRow(observations.photographs[i], {});
    ASSERT_TRUE(found);
    EXPECT_THAT(
        found->matrix(),
        IsNear((truth.Transform_Base_Tc.inverse() * truth.Transform_Base_Tr).matrix(), 1e-12));
  }
}

TEST(TrackerLoopTest, WhatIsNoPoseIsNone) {
  TrackerPose reported;
  EXPECT_TRUE(Transform_Base_Tracker(reported, {}));
  reported.position.y() = 2e7;
  EXPECT_FALSE(Transform_Base_Tracker(reported, {}));
  reported = {};
  reported.quaternionWxyz.setZero();
  EXPECT_FALSE(Transform_Base_Tracker(reported, {}));
}

TEST(ViewTest, SaysHowTheBoardStands) {
  const auto board = Board{9, 6, 0.03, {}}.Points();
  Pose pose(Eigen::AngleAxisd(30 * kDegree, Eigen::Vector3d::UnitY()));
  pose.translation() = Eigen::Vector3d(0, 0, 1) - pose.linear() * (0.5 * board.back());
  View view = ViewOf(pose, board);
  EXPECT_NEAR(view.tiltDegrees, 30, 1e-9);
  EXPECT_NEAR(view.tiltDirectionDegrees, 0, 1e-9);  // the normal leans to the right
  EXPECT_NEAR(view.rollDegrees, 0, 1e-9);
  EXPECT_NEAR(view.distanceMetres, 1, 1e-9);
  pose.linear() = Eigen::AngleAxisd(20 * kDegree, Eigen::Vector3d::UnitZ()).toRotationMatrix();
  view = ViewOf(pose, board);
  EXPECT_NEAR(view.tiltDegrees, 0, 1e-6);
  EXPECT_NEAR(view.rollDegrees, 20, 1e-6);
}

TEST(CheckTest, SuggestedViewsAreWorthMoreThanTheLastOnes) {
  const CrossCheck check = Check(test::MakeShoot(test::FortyNoisy(43), 0.05).observations);
  ASSERT_FALSE(check.suggestedViews.empty());
  for (const SuggestedView& view : check.suggestedViews) {
    EXPECT_GT(view.gain, 1);
    EXPECT_LT(view.gain, 3);
    EXPECT_LE(view.tiltDegrees, 45);
    EXPECT_GT(view.distanceMetres, 0.1);
    EXPECT_EQ(view.views, 5);
  }
}

TEST(CheckTest, SaysHowManyPhotographsHalveTheUncertainty) {
  Observations observations = test::MakeShoot(test::FortyNoisy(43), 0.05).observations;
  observations.scaleUncertainty = 1e-4;
  const CrossCheck check = Check(observations);
  ASSERT_TRUE(check.photographsToHalve);
  EXPECT_EQ(*check.photographsToHalve % 5, 0);
  // Three times as many like those that are there would do, and the best views do better.
  EXPECT_LE(*check.photographsToHalve, 3 * 40);
  double ofThreeViews = 1;
  for (const SuggestedView& view : check.suggestedViews) {
    ofThreeViews *= view.gain;
  }
  EXPECT_EQ(ofThreeViews >= 2, *check.photographsToHalve <= 15);
}

// An error of the scale is in every photograph.
TEST(CheckTest, PromisesNoHalfOfWhatPhotographsCannotReduce) {
  Observations observations = test::MakeShoot(test::FortyNoisy(43), 0.05).observations;
  observations.scaleUncertainty = 0.01;
  const CrossCheck check = Check(observations);
  EXPECT_FALSE(check.photographsToHalve);
  for (const SuggestedView& view : check.suggestedViews) {
    EXPECT_LT(view.gain, 1.2);
  }
}

// All of the paper in the image, and the roll within what a detector reads from the first corner.
TEST(CheckTest, SuggestedViewsCanBePhotographed) {
  for (const std::uint64_t seed : {43, 44, 45}) {
    const test::KnownShoot shoot = test::MakeShoot(test::FortyNoisy(seed), 0.05);
    const simulator::Chart chart = test::FortyNoisy(seed).chart;
    const Lens& lens = shoot.observations.lens;
    const CrossCheck check = Check(shoot.observations);
    ASSERT_FALSE(check.suggestedViews.empty());
    for (const SuggestedView& view : check.suggestedViews) {
      EXPECT_LE(view.tiltDegrees, 38);
      EXPECT_LE(std::abs(view.rollDegrees), 35);
      for (const Eigen::Vector3d& point : chart.PaperOutline()) {
        const Eigen::Vector2d pixel = Project(lens, PoseOfView(view, chart.Corners()) * point);
        EXPECT_GT(pixel.minCoeff(), 0);
        EXPECT_LT(pixel.x(), lens.width);
        EXPECT_LT(pixel.y(), lens.height);
      }
    }
  }
}

TEST(CheckTest, WhatIsOffOnScreenIsTheLibrarysDistance) {
  test::KnownShoot shoot = test::MakeShoot(test::FortyNoisy(44), 0.05);
  const CrossCheck alone = Check(shoot.observations);
  ASSERT_FALSE(alone.onScreen.empty());
  EXPECT_FALSE(alone.onScreen[0].libraryApart);
  // Ten millimetres to the side, seen at a distance.
  Pose off = Pose::Identity();
  off.translation().x() = 0.01;
  shoot.observations.library = off.matrix() * alone.Transform_Cam_Tc;
  const CrossCheck check = Check(shoot.observations);
  for (const OnScreen& at : check.onScreen) {
    ASSERT_TRUE(at.libraryApart);
    EXPECT_NEAR(*at.libraryApart * at.distanceMetres / (0.01 * shoot.observations.lens.fx), 1,
                0.15);  // distortion stretches it a little
  }
}

// Rotations of 0.5 degrees about x, before the found transform for the camera and behind it for the
// chart; 3 mm along x.
TEST(AxesTest, AreComparedOneByOne) {
  Pose found = Pose::Identity();
  found.linear() = Eigen::AngleAxisd(1, Eigen::Vector3d(1, 2, 3).normalized()).toRotationMatrix();
  found.translation() = Eigen::Vector3d(0.1, -0.2, 0.3);
  const Eigen::AngleAxisd rotation(0.5 * kDegree, Eigen::Vector3d::UnitX());
  const StandardError error = {{0.1, 0.2, 0.3}, {0.01, 0.02, 0.03}};
  for (const bool isCamera : {true, false}) {
    Pose other = found;
    other.linear() = isCamera ? rotation * found.linear() : found.linear() * rotation;
    other.translation().x() += 0.003;
    const TransformComparison axes = isCamera ? CompareAxesCamTc(other, found, error, 2)
                                              : CompareAxesTrChart(other, found, error, 2);
    EXPECT_TRUE(axes.isCompared);
    EXPECT_NEAR(axes.translation[0].other, 103, 1e-9);
    EXPECT_NEAR(axes.translation[0].found, 100, 1e-9);
    EXPECT_NEAR(axes.translation[0].difference, 3, 1e-9);
    EXPECT_NEAR(axes.translation[1].difference, 0, 1e-9);
    EXPECT_NEAR(axes.translation[2].half, 0.6, 1e-9);
    EXPECT_NEAR(axes.rotation[0].difference, 0.5, 1e-9);
    EXPECT_NEAR(axes.rotation[1].difference, 0, 1e-9);
    EXPECT_NEAR(axes.rotation[2].half, 0.06, 1e-9);
  }
}

}  // namespace
}  // namespace trackedcam::crosscheck
