#include <cmath>

#include <gtest/gtest.h>

#include "host/known_recording.h"
#include "host/pair/clock.h"

namespace trackedcam::host {
namespace {

using simulator::Recording;
using simulator::RecordingOptions;
using test::BoardOf;
using test::NoisyRecording;
using test::RecordingOf;
using test::SeenIn;

RecordingOptions ShortRecording(std::uint64_t seed) {
  RecordingOptions options = NoisyRecording(seed);
  options.seconds = 10;
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
    RecordingOptions options = NoisyRecording(1);
    options.seconds = 24;
    options.delayMs = delayMs;
    const auto found = FindClock(options);
    ASSERT_TRUE(found);
    EXPECT_LT(std::abs(found->offMs), 1.5);
    EXPECT_LT(found->clock.delayHalf, 0.0015);
    EXPECT_EQ(found->clock.drift, 0);
  }
}

TEST(ClockTest, FindsADriftAndClocksThatAreFarApart) {
  RecordingOptions options = NoisyRecording(2);
  options.seconds = 40;
  options.delayMs = 40;
  options.driftPpm = 300;
  options.firstStamp = 1.7e9;
  const auto found = FindClock(options);
  ASSERT_TRUE(found);
  EXPECT_LT(std::abs(found->offMs), 1.5);
  EXPECT_NEAR(found->clock.drift, 300e-6, 100e-6);
}

// Between two noisy samples the noise averages most in the middle, which pulls the times of frames
// there, if the samples always lie alike.
TEST(ClockTest, IsNotBiasedWhereRatesAreMultiples) {
  double sum = 0;
  constexpr int kRecordings = 3;
  for (int seed = 0; seed < kRecordings; ++seed) {
    RecordingOptions options = NoisyRecording(static_cast<std::uint64_t>(50 + seed));
    options.framesPerSecond = 12;
    options.delayMs = 4;  // a quarter of a period of the poses from a sample
    const auto found = FindClock(options);
    ASSERT_TRUE(found);
    sum += found->offMs;
  }
  EXPECT_LT(std::abs(sum / kRecordings), 0.5);
}

TEST(ClockTest, TakesRoughStamps) {
  RecordingOptions options = NoisyRecording(3);
  options.seconds = 30;
  options.delayMs = -30;
  options.droppedFraction = 0.1;
  options.stampStepMs = 1;
  const auto found = FindClock(options);
  ASSERT_TRUE(found);
  EXPECT_LT(std::abs(found->offMs), 1.5);
}

TEST(CoarseDelayTest, OfRecordingsThatDoNotOverlapIsNothing) {
  const Recording recording = simulator::SimulateRecording(ShortRecording(4));
  const std::vector<SeenFrame> frames = SeenIn(recording, 2);
  PoseRecording begun = RecordingOf(recording.camera);
  begun.poses.resize(begun.poses.size() / 4);
  const PoseStream camera(begun, 0);
  EXPECT_FALSE(FindCoarseDelay(frames, camera, PoseStream(RecordingOf(recording.chart), 0)));
  EXPECT_FALSE(FindCoarseDelay({}, camera, camera));
}

TEST(FitClockTest, OfTooFewFramesIsNothing) {
  const Recording recording = simulator::SimulateRecording(ShortRecording(5));
  const PoseStream camera(RecordingOf(recording.camera), 0);
  const PoseStream chart(RecordingOf(recording.chart), 0);
  std::vector<SeenFrame> frames = SeenIn(recording, 10);
  frames.resize(2);
  EXPECT_FALSE(FitClock(frames, camera, chart, BoardOf(recording), 0));
}

}  // namespace
}  // namespace trackedcam::host
