#include "simulator/recording.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

namespace trackedcam::simulator {
namespace {

class RecordingTest : public testing::TestWithParam<Motion> {
 protected:
  RecordingTest() {
    options.motion = GetParam();
    options.seconds = 40;
  }

  RecordingOptions options;
};

INSTANTIATE_TEST_SUITE_P(Motions, RecordingTest,
                         testing::Values(Motion::kHandheld, Motion::kTripod));

// Between the two poses around a stamp: the straight line, and the shortest rotation.
Eigen::Isometry3d Interpolated(const std::vector<RecordedPose>& stream, double stamp) {
  const auto after =
      std::upper_bound(stream.begin(), stream.end(), stamp,
                       [](double value, const RecordedPose& pose) { return value < pose.stamp; });
  if (after == stream.begin() || after == stream.end()) {
    throw std::out_of_range("no poses around the stamp " + std::to_string(stamp));
  }
  const RecordedPose& before = *(after - 1);
  const double share = (stamp - before.stamp) / (after->stamp - before.stamp);
  Eigen::Isometry3d pose = Eigen::Isometry3d::Identity();
  pose.linear() = Eigen::Quaterniond(before.pose.linear())
                      .slerp(share, Eigen::Quaterniond(after->pose.linear()))
                      .toRotationMatrix();
  pose.translation() = (1 - share) * before.pose.translation() + share * after->pose.translation();
  return pose;
}

double AngleBetween(const Eigen::Isometry3d& first, const Eigen::Isometry3d& second) {
  return Degrees(Eigen::AngleAxisd(first.linear().transpose() * second.linear()).angle());
}

TEST_P(RecordingTest, TheStreamsAtTheTimesOfTheFramesGiveTheChartAsTheCameraSeesIt) {
  options.posesPerSecond = 500;
  options.delayMs = 80;
  options.driftPpm = 200;
  options.firstStamp = 5000;
  options.shoot.mountingErrorMm = 4;
  const Recording recording = SimulateRecording(options);
  ASSERT_EQ(recording.frames.size(), 1000u);
  for (std::size_t i = 0; i < recording.frames.size(); i += 10) {
    const RecordedFrame& frame = recording.frames[i];
    EXPECT_NEAR(frame.time, 1 + static_cast<double>(i) / 25, 1e-9);
    const double stamp = 5000 + 0.080 + frame.time * 1.0002;
    const Eigen::Isometry3d Transform_Cam_Chart =
        recording.Transform_Cam_Tc * Interpolated(recording.camera, stamp).inverse() *
        Interpolated(recording.chart, stamp) * recording.trueMounting.Transform();
    EXPECT_LT((Transform_Cam_Chart.translation() - frame.Transform_Cam_Chart.translation()).norm(),
              1e-5);
    EXPECT_LT(AngleBetween(Transform_Cam_Chart, frame.Transform_Cam_Chart), 1e-3);
  }
}

// Mean speeds in windows of 0.1 s of the faster tracker.
TEST_P(RecordingTest, TheHandsMoveAtOrdinarySpeedsAndPause) {
  const Recording recording = SimulateRecording(options);
  ASSERT_NEAR(static_cast<double>(recording.chart.size()), 42 * 120, 2);
  int moving = 0;
  int pauses = 0;
  double paused = 0;
  double fastest = 0;
  double fastestTurn = 0;
  constexpr std::size_t kWindow = 12;
  for (std::size_t i = 0; i + kWindow < recording.chart.size(); i += kWindow) {
    double metres = 0;
    double degrees = 0;
    for (const auto* stream : {&recording.camera, &recording.chart}) {
      const Eigen::Isometry3d& from = (*stream)[i].pose;
      const Eigen::Isometry3d& to = (*stream)[i + kWindow].pose;
      metres = std::max(metres, (to.translation() - from.translation()).norm() / 0.1);
      degrees = std::max(degrees, AngleBetween(from, to) / 0.1);
    }
    fastest = std::max(fastest, metres);
    fastestTurn = std::max(fastestTurn, degrees);
    moving += metres > 0.1 || degrees > 10 ? 1 : 0;
    paused = metres < 0.03 && degrees < 3 ? paused + 0.1 : 0;
    pauses += paused > 0.35 && paused < 0.45 ? 1 : 0;
  }
  EXPECT_GT(fastest, 0.2);
  EXPECT_LT(fastest, 0.6);
  EXPECT_GT(fastestTurn, 25);
  EXPECT_LT(fastestTurn, 75);
  EXPECT_GT(moving, 420 / 3);
  EXPECT_GE(pauses, 6);
}

TEST_P(RecordingTest, TheChartIsInsideMostFrames) {
  const Recording recording = SimulateRecording(options);
  const auto inside = std::count_if(recording.frames.begin(), recording.frames.end(),
                                    [](const RecordedFrame& frame) { return frame.isChartInside; });
  EXPECT_GT(inside, 0.6 * 1000);
  for (const RecordedFrame& frame : recording.frames) {
    ASSERT_EQ(frame.corners.size(), 54u);
    for (std::size_t i = 0; i < frame.corners.size() && frame.isChartInside; ++i) {
      EXPECT_GT(frame.corners[i].minCoeff(), -0.5);
      EXPECT_LT(frame.corners[i].x(), 1919.5);
      EXPECT_LT(frame.corners[i].y(), 1079.5);
    }
  }
}

TEST_P(RecordingTest, ItIsTheSameEachTime) {
  options.seconds = 5;
  options.shoot.trackerNoiseMm = 1;
  const Recording first = SimulateRecording(options);
  const Recording second = SimulateRecording(options);
  ASSERT_EQ(first.camera.size(), second.camera.size());
  for (std::size_t i = 0; i < first.camera.size(); ++i) {
    EXPECT_EQ(first.camera[i].stamp, second.camera[i].stamp);
    EXPECT_EQ(first.camera[i].pose.matrix(), second.camera[i].pose.matrix());
    EXPECT_EQ(first.chart[i].pose.matrix(), second.chart[i].pose.matrix());
  }
}

TEST(Recording, OnATripodOnlyTheChartMoves) {
  RecordingOptions options;
  options.motion = Motion::kTripod;
  options.seconds = 5;
  const Recording recording = SimulateRecording(options);
  for (const RecordedPose& pose : recording.camera) {
    EXPECT_EQ(pose.pose.matrix(), recording.camera.front().pose.matrix());
  }
  EXPECT_GT((recording.chart.back().pose.translation() - recording.chart.front().pose.translation())
                .norm(),
            0.005);
}

TEST(Recording, HandsAreNeverQuiteStill) {
  RecordingOptions options;
  options.seconds = 20;
  const Recording recording = SimulateRecording(options);
  for (std::size_t i = 12; i < recording.camera.size(); ++i) {
    EXPECT_GT(AngleBetween(recording.camera[i - 12].pose, recording.camera[i].pose), 0.003);
  }
}

TEST(Recording, TheStreamsAreNotSampledTogetherButEvenly) {
  RecordingOptions options;
  options.seconds = 5;
  const Recording recording = SimulateRecording(options);
  EXPECT_GT(std::abs(recording.camera.front().stamp - recording.chart.front().stamp), 1e-5);
  for (const auto* stream : {&recording.camera, &recording.chart}) {
    for (std::size_t i = 1; i < stream->size(); ++i) {
      EXPECT_NEAR((*stream)[i].stamp - (*stream)[i - 1].stamp, 1 / 120.0, 1e-9);
    }
  }
}

TEST(Recording, NoiseHasTheStatedSpread) {
  RecordingOptions options;
  options.seconds = 20;
  const Recording exact = SimulateRecording(options);
  options.shoot.trackerNoiseMm = 0.7;
  options.shoot.trackerNoiseDegrees = 0.04;
  const Recording noisy = SimulateRecording(options);
  ASSERT_EQ(exact.chart.size(), noisy.chart.size());
  double squares = 0;
  double squareDegrees = 0;
  for (std::size_t i = 0; i < exact.chart.size(); ++i) {
    squares +=
        (noisy.chart[i].pose.translation() - exact.chart[i].pose.translation()).squaredNorm();
    squareDegrees += std::pow(AngleBetween(noisy.chart[i].pose, exact.chart[i].pose), 2);
  }
  const auto count = 3 * static_cast<double>(exact.chart.size());
  EXPECT_NEAR(std::sqrt(squares / count), 0.0007, 0.00004);
  EXPECT_NEAR(std::sqrt(squareDegrees / count), 0.04, 0.002);
}

TEST(Recording, PosesAreDroppedWithoutMovingTheOthers) {
  RecordingOptions options;
  options.seconds = 20;
  options.shoot.trackerNoiseMm = 1;
  const Recording whole = SimulateRecording(options);
  options.droppedFraction = 0.2;
  const Recording dropped = SimulateRecording(options);
  EXPECT_NEAR(static_cast<double>(dropped.camera.size()), 0.8 * 22 * 120, 80);
  for (const RecordedPose& pose : dropped.camera) {
    const auto same = std::lower_bound(
        whole.camera.begin(), whole.camera.end(), pose.stamp,
        [](const RecordedPose& other, double stamp) { return other.stamp < stamp; });
    ASSERT_NE(same, whole.camera.end());
    EXPECT_EQ(same->stamp, pose.stamp);
    EXPECT_EQ(same->pose.matrix(), pose.pose.matrix());
  }
}

TEST(Recording, StampsAreRoundedToTheStep) {
  RecordingOptions options;
  options.seconds = 5;
  const Recording exact = SimulateRecording(options);
  options.stampStepMs = 10;
  const Recording rounded = SimulateRecording(options);
  double largest = 0;
  for (std::size_t i = 0; i < exact.chart.size(); ++i) {
    const double steps = rounded.chart[i].stamp * 100;
    EXPECT_NEAR(steps, std::round(steps), 1e-9);
    largest = std::max(largest, std::abs(rounded.chart[i].stamp - exact.chart[i].stamp));
  }
  EXPECT_LE(largest, 0.005 + 1e-9);
  EXPECT_GT(largest, 0.003);
}

// The corners of the upper half are seen before the middle of the exposure, those below after it.
TEST(Recording, ARollingShutterShowsEachCornerAtTheTimeOfItsRow) {
  RecordingOptions options;
  options.seconds = 2.5;
  options.framesPerSecond = 50;
  const Recording global = SimulateRecording(options);
  options.readoutSeconds = 0.02;
  const Recording rolling = SimulateRecording(options);
  ASSERT_EQ(global.frames.size(), rolling.frames.size());
  double most = 0;
  for (std::size_t i = 1; i + 1 < global.frames.size(); ++i) {
    for (std::size_t corner = 0; corner < 54; ++corner) {
      const Eigen::Vector2d seen = rolling.frames[i].corners[corner];
      const Eigen::Vector2d& still = global.frames[i].corners[corner];
      const Eigen::Vector2d perSecond =
          (global.frames[i + 1].corners[corner] - global.frames[i - 1].corners[corner]) / 0.04;
      const double late = ((seen.y() + 0.5) / 1080 - 0.5) * 0.02;
      EXPECT_LT((seen - still - late * perSecond).norm(), 0.2);
      most = std::max(most, (seen - still).norm());
    }
  }
  EXPECT_GT(most, 2);
}

TEST(Recording, RefusesWhatCannotBeRecorded) {
  const auto refused = [](double RecordingOptions::*value, double number) {
    RecordingOptions options;
    options.seconds = 2;
    options.*value = number;
    EXPECT_THROW(SimulateRecording(options), std::invalid_argument) << number;
  };
  refused(&RecordingOptions::seconds, 0);
  refused(&RecordingOptions::seconds, std::nan(""));
  refused(&RecordingOptions::framesPerSecond, 0);
  refused(&RecordingOptions::posesPerSecond, -1);
  refused(&RecordingOptions::exposureSeconds, 0.05);
  refused(&RecordingOptions::readoutSeconds, -0.01);
  refused(&RecordingOptions::droppedFraction, 1);
  refused(&RecordingOptions::stampStepMs, -1);
  refused(&RecordingOptions::driftPpm, 1e6);
  refused(&RecordingOptions::delayMs, std::nan(""));
}

}  // namespace
}  // namespace trackedcam::simulator
