#include <cmath>

#include <gtest/gtest.h>

#include "host/pair/clock.h"
#include "simulator/random.h"
#include "simulator/recording.h"

namespace trackedcam::host {
namespace {

using simulator::Recording;
using simulator::RecordingOptions;

PoseRecording RecordingOf(const std::vector<simulator::RecordedPose>& stream) {
  PoseRecording recording;
  recording.firstStamp = stream.front().stamp;
  for (const simulator::RecordedPose& recorded : stream) {
    const Eigen::Quaterniond q(recorded.pose.linear());
    recording.poses.push_back({recorded.stamp - recording.firstStamp,
                               {recorded.pose.translation(), {q.w(), q.x(), q.y(), q.z()}}});
  }
  return recording;
}

// The frames whose corners are seen, with noise of 0.05 pixels.
std::vector<SeenFrame> SeenIn(const Recording& recording, std::size_t every) {
  simulator::Random random(recording.options.shoot.seed, simulator::Draw::kPicture);
  std::vector<SeenFrame> seen;
  for (std::size_t i = 0; i < recording.frames.size(); i += every) {
    const simulator::RecordedFrame& frame = recording.frames[i];
    if (frame.isChartInside) {
      SeenFrame& own = seen.emplace_back();
      own.seconds = frame.time;
      own.Transform_Cam_Chart = frame.Transform_Cam_Chart;
      for (const Eigen::Vector2d& corner : frame.corners) {
        own.corners.push_back(corner + 0.05 * random.NormalVector().head<2>());
      }
    }
  }
  return seen;
}

crosscheck::Observations BoardOf(const Recording& recording) {
  const simulator::ShootOptions& shoot = recording.options.shoot;
  const simulator::Lens& lens = recording.lens;
  crosscheck::Observations board;
  board.boardColumns = shoot.chart.cols;
  board.boardRows = shoot.chart.rows;
  board.square = shoot.chart.squareMetres;
  board.lens = {shoot.imageWidth, shoot.imageHeight, lens.fx, lens.fy,
                lens.cx,          lens.cy,           lens.k1, lens.k2};
  return board;
}

RecordingOptions Noisy(std::uint64_t seed) {
  RecordingOptions options;
  options.shoot.seed = seed;
  options.shoot.trackerNoiseMm = 0.3;
  options.shoot.trackerNoiseDegrees = 0.05;
  return options;
}

// A clock, and how far it is from the truth at its mean time.
struct Found {
  Clock clock;
  double offMs = 0;
};

std::optional<Found> FindClock(const RecordingOptions& options) {
  const Recording recording = simulator::SimulateRecording(options);
  const double origin = options.firstStamp;
  const PoseStream camera(RecordingOf(recording.camera), origin);
  const PoseStream chart(RecordingOf(recording.chart), origin);
  const auto coarse = FindCoarseDelay(SeenIn(recording, 2), camera, chart);
  if (!coarse) {
    return std::nullopt;
  }
  const auto clock =
      FitClock(SeenIn(recording, 10), camera, chart, BoardOf(recording), coarse->seconds);
  if (!clock) {
    return std::nullopt;
  }
  const double truth = simulator::StampAt(options, clock->meanSeconds) - origin;
  return Found{*clock, 1e3 * (clock->PoseTime(clock->meanSeconds) - truth)};
}

TEST(ClockTest, FindsADelayOfEitherSign) {
  for (const double delayMs : {-80.0, 0.0, 80.0}) {
    SCOPED_TRACE(delayMs);
    RecordingOptions options = Noisy(1);
    options.delayMs = delayMs;
    const auto found = FindClock(options);
    ASSERT_TRUE(found);
    EXPECT_LT(std::abs(found->offMs), 1.5e3 * found->clock.delayHalf);
    EXPECT_LT(found->clock.delayHalf, 0.001);
    EXPECT_EQ(found->clock.drift, 0);
  }
}

TEST(ClockTest, FindsADriftAndClocksThatAreFarApart) {
  RecordingOptions options = Noisy(2);
  options.delayMs = 40;
  options.driftPpm = 300;
  options.firstStamp = 1.7e9;
  const auto found = FindClock(options);
  ASSERT_TRUE(found);
  EXPECT_LT(std::abs(found->offMs), 1.5e3 * found->clock.delayHalf);
  EXPECT_NEAR(found->clock.drift, 300e-6, 1.5 * found->clock.driftHalf);
}

// Between two noisy samples the noise averages most in the middle, which pulls the times of frames
// there, if the samples always lie alike.
TEST(ClockTest, IsNotBiasedWhereRatesAreMultiples) {
  double sum = 0;
  constexpr int kRecordings = 6;
  for (int seed = 0; seed < kRecordings; ++seed) {
    RecordingOptions options = Noisy(static_cast<std::uint64_t>(50 + seed));
    options.framesPerSecond = 12;
    options.delayMs = 4;  // a quarter of a period of the poses from a sample
    const auto found = FindClock(options);
    ASSERT_TRUE(found);
    sum += found->offMs;
  }
  EXPECT_LT(std::abs(sum / kRecordings), 0.25);
}

TEST(ClockTest, TakesRoughStamps) {
  RecordingOptions options = Noisy(3);
  options.delayMs = -30;
  options.droppedFraction = 0.1;
  options.stampStepMs = 1;
  const auto found = FindClock(options);
  ASSERT_TRUE(found);
  EXPECT_LT(std::abs(found->offMs), 1);
}

TEST(CoarseDelayTest, OfRecordingsThatDoNotOverlapIsNothing) {
  const Recording recording = simulator::SimulateRecording(Noisy(4));
  const std::vector<SeenFrame> frames = SeenIn(recording, 2);
  PoseRecording begun = RecordingOf(recording.camera);
  begun.poses.resize(begun.poses.size() / 4);
  const PoseStream camera(begun, 0);
  EXPECT_FALSE(FindCoarseDelay(frames, camera, PoseStream(RecordingOf(recording.chart), 0)));
  EXPECT_FALSE(FindCoarseDelay({}, camera, camera));
}

TEST(FitClockTest, OfTooFewFramesIsNothing) {
  const Recording recording = simulator::SimulateRecording(Noisy(5));
  const PoseStream camera(RecordingOf(recording.camera), 0);
  const PoseStream chart(RecordingOf(recording.chart), 0);
  std::vector<SeenFrame> frames = SeenIn(recording, 10);
  frames.resize(2);
  EXPECT_FALSE(FitClock(frames, camera, chart, BoardOf(recording), 0));
}

}  // namespace
}  // namespace trackedcam::host
