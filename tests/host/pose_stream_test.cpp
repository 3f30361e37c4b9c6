#include "host/pair/pose_stream.h"

#include <cmath>

#include <gtest/gtest.h>

#include "host/input/input_error.h"
#include "simulator/random.h"

namespace trackedcam::host {
namespace {

using crosscheck::Exp;
using crosscheck::Pose;
using crosscheck::Twist;

constexpr double kRate = 100;  // poses per second

// Turns about z with 1 radian per second and falls along x.
Pose MovingAt(double seconds) {
  Pose pose = Pose::Identity();
  pose.linear() = Eigen::AngleAxisd(seconds, Eigen::Vector3d::UnitZ()).toRotationMatrix();
  pose.translation() << 0.5 * seconds * seconds, 1, 2;
  return pose;
}

TimedPose TimedOf(double seconds, const Pose& pose) {
  const Eigen::Quaterniond q(pose.linear());
  return {seconds, {pose.translation(), {q.w(), q.x(), q.y(), q.z()}}};
}

// One second.
PoseRecording Moving() {
  PoseRecording recording;
  recording.firstStamp = 1000;
  for (int i = 0; i <= kRate; ++i) {
    recording.poses.push_back(TimedOf(i / kRate, MovingAt(i / kRate)));
  }
  return recording;
}

TEST(PoseStreamTest, FollowsAMotionBetweenTheSamples) {
  const PoseStream stream(Moving(), 990);
  EXPECT_NEAR(stream.First(), 10, 1e-12);
  EXPECT_NEAR(stream.Last(), 11, 1e-12);
  EXPECT_NEAR(stream.Interval(), 0.01, 1e-12);
  for (const double at : {0.1, 0.5, 0.5037, 0.9}) {
    SCOPED_TRACE(at);
    const auto smooth = stream.At(10 + at);
    ASSERT_TRUE(smooth);
    EXPECT_LT(crosscheck::Log(MovingAt(at).inverse() * smooth->pose).norm(), 1e-5);
    EXPECT_NEAR(smooth->perSecond[2], 1, 1e-4);
    // Falling along x, seen in the axes of the tracker.
    EXPECT_NEAR(smooth->perSecond[3], at * std::cos(at), 1e-3);
    EXPECT_NEAR(smooth->perSecond[4], -at * std::sin(at), 1e-3);
  }
  EXPECT_FALSE(stream.At(9.9));
  EXPECT_FALSE(stream.At(10.005));  // no samples before it
  EXPECT_FALSE(stream.At(11.1));
}

TEST(PoseStreamTest, HasNothingInAGap) {
  PoseRecording recording = Moving();
  recording.poses.erase(recording.poses.begin() + 40, recording.poses.begin() + 50);
  const PoseStream stream(recording, 1000);
  EXPECT_EQ(stream.gaps, 1U);
  EXPECT_TRUE(stream.At(0.3));
  EXPECT_FALSE(stream.At(0.45));
  EXPECT_TRUE(stream.At(0.6));
}

TEST(PoseStreamTest, DoesNotSmoothOverAJump) {
  PoseRecording recording = Moving();
  for (std::size_t i = 50; i < recording.poses.size(); ++i) {
    recording.poses[i].pose.position.y() += 0.1;
  }
  const PoseStream stream(recording, 1000);
  EXPECT_EQ(stream.jumps, 1U);
  const auto before = stream.At(0.47);
  const auto after = stream.At(0.53);
  ASSERT_TRUE(before && after);
  EXPECT_NEAR(before->pose.translation().y(), 1, 1e-6);
  EXPECT_NEAR(after->pose.translation().y(), 1.1, 1e-6);
  EXPECT_FALSE(stream.At(0.495));
}

TEST(PoseStreamTest, LeavesOutFrozenPoses) {
  PoseRecording recording = Moving();
  for (std::size_t i = 50; i < 60; ++i) {
    recording.poses[i].pose = recording.poses[49].pose;
  }
  const PoseStream stream(recording, 1000);
  EXPECT_EQ(stream.frozenPoses, 11U);
  EXPECT_FALSE(stream.At(0.55));
  EXPECT_FALSE(stream.StillAround(0.55));
  EXPECT_TRUE(stream.At(0.4));
  EXPECT_TRUE(stream.At(0.7));
}

// At rest, with white noise of 0.3 mm and 0.05 degrees.
PoseRecording AtRest(double seconds) {
  simulator::Random random(1, simulator::Draw::kTrackers);
  PoseRecording recording;
  for (int i = 0; i < seconds * kRate; ++i) {
    Pose pose = MovingAt(0);
    pose.translation() += 0.0003 * random.NormalVector();
    const Eigen::Vector3d about = 0.05 * crosscheck::kDegree * random.NormalVector();
    pose.rotate(Eigen::AngleAxisd(about.norm(), about.normalized()));
    recording.poses.push_back(TimedOf(i / kRate, pose));
  }
  return recording;
}

// White noise of 0.3 mm over a second at 100 Hz: 0.3 / sqrt(100) = 0.03 mm.
TEST(PoseStreamTest, AveragesATrackerThatStandsStill) {
  const PoseStream stream(AtRest(200), 0);
  double squares = 0;
  int count = 0;
  for (double at = 1; at < 199; at += 0.5) {
    if (const auto mean = stream.StillAround(at)) {
      squares += (mean->translation() - MovingAt(0).translation()).squaredNorm() / 3;
      ++count;
    }
  }
  EXPECT_GE(count, 390);  // of 396
  EXPECT_NEAR(1e3 * std::sqrt(squares / count), 0.031, 0.004);
}

// A tremor of 0.8 mm is no noise: a photograph shows where the tracker was at that instant.
TEST(PoseStreamTest, DoesNotAverageWhatMoves) {
  PoseRecording trembling = AtRest(20);
  PoseRecording slow = AtRest(20);
  for (std::size_t i = 0; i < trembling.poses.size(); ++i) {
    const double seconds = trembling.poses[i].seconds;
    trembling.poses[i].pose.position.x() += 0.0008 * std::sin(6.28 * 4 * seconds);
    slow.poses[i].pose.position.x() += 0.02 * seconds;  // metres per second
  }
  const PoseStream trembles(trembling, 0);
  const PoseStream moves(slow, 0);
  int still = 0;
  for (double at = 1; at < 19; at += 0.1) {
    still += trembles.StillAround(at).has_value() ? 1 : 0;
    still += moves.StillAround(at).has_value() ? 1 : 0;
  }
  EXPECT_LE(still, 18);  // of 360
}

TEST(PoseStreamTest, DoesNotAverageOverAGapOrAJump) {
  PoseRecording recording = AtRest(20);
  recording.poses.erase(recording.poses.begin() + 1000, recording.poses.begin() + 1050);
  for (std::size_t i = 500; i < recording.poses.size(); ++i) {
    recording.poses[i].pose.position.x() += 0.1;
  }
  const PoseStream stream(recording, 0);
  EXPECT_EQ(stream.gaps, 1U);
  EXPECT_EQ(stream.jumps, 1U);
  EXPECT_FALSE(stream.StillAround(10.25));
  EXPECT_FALSE(stream.StillAround(4.99));
  const auto before = stream.StillAround(4.7);
  ASSERT_TRUE(before);
  EXPECT_NEAR(before->translation().x(), MovingAt(0).translation().x(), 0.0002);
}

TEST(PoseStreamTest, OfAFixedTrackerIsAlwaysTheSame) {
  const PoseStream stream(MovingAt(1));
  EXPECT_TRUE(stream.IsFixed());
  const auto at = stream.At(1e9);
  ASSERT_TRUE(at);
  EXPECT_TRUE(at->pose.isApprox(MovingAt(1)));
  EXPECT_TRUE(at->perSecond.isZero());
}

TEST(PoseStreamTest, RefusesWhatIsNoRecording) {
  PoseRecording few = Moving();
  few.poses.resize(9);
  EXPECT_THROW(PoseStream(few, 0), InputError);
  PoseRecording zero = Moving();
  zero.poses[5].pose.quaternionWxyz.setZero();
  EXPECT_THROW(PoseStream(zero, 0), InputError);
}

}  // namespace
}  // namespace trackedcam::host
