#include "simulator/tracking.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "simulator/mounting.h"
#include "simulator/shoot.h"

namespace trackedcam::simulator {
namespace {

using Tracker = std::pair<Eigen::Isometry3d Photograph::*, Eigen::Isometry3d Photograph::*>;

// True and reported pose.
constexpr Tracker kOnCamera(&Photograph::Transform_Base_Tc, &Photograph::trackedTc);
constexpr Tracker kOnChart(&Photograph::Transform_Base_Tr, &Photograph::trackedTr);

// By how much the reported pose is displaced, in the tracker's frame.
Eigen::Isometry3d DisplacementOf(const Photograph& photograph, const Tracker& tracker) {
  return (photograph.*tracker.first).inverse() * (photograph.*tracker.second);
}

Eigen::Vector3d RotationVector(const Eigen::Isometry3d& transform) {
  const Eigen::AngleAxisd rotation(transform.linear());
  return rotation.angle() * rotation.axis();
}

void ExpectTruthReported(const Photograph& photograph, const Tracker& tracker) {
  EXPECT_EQ((photograph.*tracker.first).matrix(), (photograph.*tracker.second).matrix());
}

TEST(TrackingTest, AScaleMultipliesTheReportedPositions) {
  ShootOptions options;
  options.trackerScale = 1.005;
  for (const Photograph& photograph : SimulateShoot(options).photographs) {
    for (const Tracker& tracker : {kOnCamera, kOnChart}) {
      const Eigen::Isometry3d& truth = photograph.*tracker.first;
      const Eigen::Isometry3d& reported = photograph.*tracker.second;
      EXPECT_LT((reported.translation() - 1.005 * truth.translation()).norm(), 1e-12);
      EXPECT_EQ(reported.linear(), truth.linear());
    }
  }
}

TEST(TrackingTest, ABentVolumeRaisesPositionsWithTheSquareOfTheirDistanceFromTheMiddle) {
  ShootOptions options;
  options.volumeBendMm = 8;
  Tracking tracking(options);
  Random random(options.seed, Draw::kTrackers);
  const auto rise = [&](double aside) {
    Eigen::Isometry3d pose = Eigen::Isometry3d::Identity();
    pose.translation() << kMiddleOfVolume.x() + aside, 1.3, -2;
    const Eigen::Isometry3d reported = tracking.Report({pose, pose}, random).Transform_Base_Tr;
    EXPECT_EQ(reported.translation().x(), pose.translation().x());
    EXPECT_EQ(reported.translation().z(), pose.translation().z());
    EXPECT_EQ(reported.linear(), pose.linear());
    return reported.translation().y() - pose.translation().y();
  };
  EXPECT_NEAR(rise(0), 0, 1e-12);
  EXPECT_NEAR(rise(1), 0.008, 1e-12);
  EXPECT_NEAR(rise(-1), 0.008, 1e-12);
  EXPECT_NEAR(rise(0.5), 0.002, 1e-12);
}

TEST(TrackingTest, TheMiddleOfTheVolumeIsWhereTheChartIsHeld) {
  ShootOptions options;
  options.photographs = 200;
  Eigen::Vector3d sum = Eigen::Vector3d::Zero();
  for (const Photograph& photograph : SimulateShoot(options).photographs) {
    sum += photograph.Transform_Base_Tr.translation();
  }
  EXPECT_LT((sum / 200 - kMiddleOfVolume).norm(), 0.2);
}

TEST(TrackingTest, TheErrorOfAPoseHasTheStatedSize) {
  ShootOptions options;
  options.photographs = 2000;
  options.poseErrorMm = 0.5;
  options.poseErrorDegrees = 0.1;
  const Shoot shoot = SimulateShoot(options);
  for (const Tracker& tracker : {kOnCamera, kOnChart}) {
    Eigen::Vector3d metres = Eigen::Vector3d::Zero();
    Eigen::Vector3d radians = Eigen::Vector3d::Zero();
    for (const Photograph& photograph : shoot.photographs) {
      const Eigen::Isometry3d& truth = photograph.*tracker.first;
      const Eigen::Isometry3d& reported = photograph.*tracker.second;
      metres += (reported.translation() - truth.translation()).cwiseAbs2();
      radians += RotationVector(DisplacementOf(photograph, tracker)).cwiseAbs2();
    }
    for (int axis = 0; axis < 3; ++axis) {
      EXPECT_NEAR(std::sqrt(metres[axis] / 2000), 0.0005, 0.0002);
      EXPECT_NEAR(Degrees(std::sqrt(radians[axis] / 2000)), 0.1, 0.04);
    }
  }
}

TEST(TrackingTest, TheErrorOfAPoseIsTheSameEachTimeAndChangesSmoothly) {
  const auto reported = [](const Eigen::Isometry3d& pose, std::uint64_t seed) {
    ShootOptions options;
    options.seed = seed;
    options.poseErrorMm = 0.5;
    options.poseErrorDegrees = 0.1;
    Random random(seed, Draw::kTrackers);
    return Tracking(options).Report({pose, pose}, random).Transform_Base_Tc;
  };
  const Eigen::Isometry3d pose = SimulateShoot({}).photographs.front().Transform_Base_Tc;
  const Eigen::Isometry3d error = pose.inverse() * reported(pose, 1);
  EXPECT_GT(error.translation().norm(), 0.0001);
  EXPECT_EQ(reported(pose, 1).matrix(), reported(pose, 2).matrix());

  // A millimetre and a tenth of a degree change it by less than three hundredths of its size.
  const Eigen::Isometry3d close = pose * Eigen::Translation3d(0.001, 0, 0) *
                                  Eigen::AngleAxisd(Radians(0.1), Eigen::Vector3d(1, 2, -2) / 3);
  const Eigen::Isometry3d closeError = close.inverse() * reported(close, 1);
  EXPECT_LT((closeError.translation() - error.translation()).norm(), 0.03 * 0.0005);
  // Ten centimetres change it by more than a tenth.
  const Eigen::Isometry3d distant = pose * Eigen::Translation3d(0.1, 0, 0);
  const Eigen::Isometry3d distantError = distant.inverse() * reported(distant, 1);
  EXPECT_GT((distantError.translation() - error.translation()).norm(), 0.1 * 0.0005);
}

// Base's y axis points up: the columns of a chart that is held upright point down.
TEST(TrackingTest, TheCamerasTrackerSagsAlongGravity) {
  ShootOptions options;
  options.sagMm = 1.5;
  const Shoot shoot = SimulateShoot(options);
  double down = 0;
  std::vector<Eigen::Vector3d> displacements;
  for (const Photograph& photograph : shoot.photographs) {
    const Eigen::Vector3d inTracker = DisplacementOf(photograph, kOnCamera).translation();
    const Eigen::Vector3d inBase = photograph.Transform_Base_Tc.linear() * inTracker;
    EXPECT_LT((inBase - Eigen::Vector3d(0, -0.0015, 0)).norm(), 1e-12);
    EXPECT_EQ(photograph.trackedTc.linear(), photograph.Transform_Base_Tc.linear());
    ExpectTruthReported(photograph, kOnChart);
    displacements.push_back(inTracker);
    down += (photograph.Transform_Base_Tr * shoot.trueMounting.Transform()).linear()(1, 1);
  }
  EXPECT_LT(down / 20, -0.7);
  // The camera is tilted differently each time, so the tracker moves on its mount.
  double farthest = 0;
  for (const Eigen::Vector3d& displacement : displacements) {
    farthest = std::max(farthest, (displacement - displacements.front()).norm());
  }
  EXPECT_GT(farthest, 0.0003);
}

TEST(TrackingTest, ALooseTrackerIsInOneOfTwoSeats) {
  ShootOptions options;
  options.photographs = 200;
  options.looseMm = 2;
  const Shoot shoot = SimulateShoot(options);
  const Eigen::Vector3d first = DisplacementOf(shoot.photographs.front(), kOnCamera).translation();
  EXPECT_NEAR(first.norm(), 0.001, 1e-12);
  int inFirst = 0;
  for (const Photograph& photograph : shoot.photographs) {
    const Eigen::Vector3d seat = DisplacementOf(photograph, kOnCamera).translation();
    const double apart = (seat - first).norm();
    EXPECT_TRUE(apart < 1e-12 || std::abs(apart - 0.002) < 1e-12) << apart;
    inFirst += apart < 1e-12 ? 1 : 0;
    EXPECT_EQ(photograph.trackedTc.linear(), photograph.Transform_Base_Tc.linear());
    ExpectTruthReported(photograph, kOnChart);
  }
  EXPECT_GT(inFirst, 70);
  EXPECT_LT(inFirst, 130);
}

// 25 ms are a hundredth of the 2.5 s between two photographs.
TEST(TrackingTest, ADelayReportsPosesOnTheWayFromThePhotographBefore) {
  ShootOptions options;
  options.delayMs = 25;
  const Shoot shoot = SimulateShoot(options);
  ExpectTruthReported(shoot.photographs.front(), kOnCamera);
  ExpectTruthReported(shoot.photographs.front(), kOnChart);
  for (std::size_t i = 1; i < shoot.photographs.size(); ++i) {
    for (const Tracker& tracker : {kOnCamera, kOnChart}) {
      const Eigen::Isometry3d& now = shoot.photographs[i].*tracker.first;
      const Eigen::Isometry3d& before = shoot.photographs[i - 1].*tracker.first;
      const Eigen::Isometry3d& reported = shoot.photographs[i].*tracker.second;
      const Eigen::Vector3d moved = before.translation() - now.translation();
      EXPECT_LT((reported.translation() - now.translation() - 0.01 * moved).norm(), 1e-12);
      const Eigen::Vector3d turned = RotationVector(now.inverse() * before);
      EXPECT_LT((RotationVector(now.inverse() * reported) - 0.01 * turned).norm(), 1e-9);
    }
  }
}

// The correlation of the noise of photographs that are so far apart, over all axes.
double Correlation(const Shoot& shoot, const Tracker& tracker, std::size_t apart) {
  double together = 0;
  double alone = 0;
  for (std::size_t i = 0; i + apart < shoot.photographs.size(); ++i) {
    const Eigen::Isometry3d first = DisplacementOf(shoot.photographs[i], tracker);
    const Eigen::Isometry3d second = DisplacementOf(shoot.photographs[i + apart], tracker);
    // In units of the noise: 1 mm and 0.1 degrees.
    const auto weigh = [&](const Eigen::Isometry3d& noise) {
      Eigen::Matrix<double, 6, 1> all;
      all << noise.translation() / 0.001, RotationVector(noise) / Radians(0.1);
      return all;
    };
    together += weigh(first).dot(weigh(second));
    alone += weigh(first).squaredNorm();
  }
  return together / alone;
}

TEST(TrackingTest, NoiseIsCorrelatedAsStated) {
  ShootOptions options;
  options.photographs = 2000;
  options.trackerNoiseMm = 1;
  options.trackerNoiseDegrees = 0.1;
  for (const double correlation : {0.0, 0.6}) {
    options.noiseCorrelation = correlation;
    const Shoot shoot = SimulateShoot(options);
    for (const Tracker& tracker : {kOnCamera, kOnChart}) {
      EXPECT_NEAR(Correlation(shoot, tracker, 1), correlation, 0.04);
      EXPECT_NEAR(Correlation(shoot, tracker, 2), correlation * correlation, 0.04);
      double sum = 0;
      for (const Photograph& photograph : shoot.photographs) {
        sum += DisplacementOf(photograph, tracker).translation().squaredNorm();
      }
      EXPECT_NEAR(std::sqrt(sum / 3 / 2000), 0.001, 0.00005);
    }
  }
}

TEST(TrackingTest, FullyCorrelatedNoiseIsAlwaysTheSame) {
  ShootOptions options;
  options.trackerNoiseMm = 1;
  options.noiseCorrelation = 1;
  const Shoot shoot = SimulateShoot(options);
  const Eigen::Vector3d first = DisplacementOf(shoot.photographs.front(), kOnChart).translation();
  EXPECT_GT(first.norm(), 0.0001);
  for (const Photograph& photograph : shoot.photographs) {
    EXPECT_LT((DisplacementOf(photograph, kOnChart).translation() - first).norm(), 1e-12);
  }
}

TEST(TrackingTest, NoFlawOfTheTrackersMovesCameraOrChart) {
  ShootOptions options;
  const Shoot plain = SimulateShoot(options);
  options.noiseCorrelation = 0.5;
  options.trackerScale = 1.01;
  options.volumeBendMm = options.poseErrorMm = options.sagMm = options.looseMm = 1;
  options.poseErrorDegrees = 1;
  options.delayMs = 100;
  options.frozenRows = 3;
  const Shoot flawed = SimulateShoot(options);
  for (const auto transform : {&Photograph::Transform_Cam_Chart, &Photograph::Transform_Base_Tc,
                               &Photograph::Transform_Base_Tr}) {
    EXPECT_EQ(plain.Matrices(transform), flawed.Matrices(transform));
  }
}

}  // namespace
}  // namespace trackedcam::simulator
