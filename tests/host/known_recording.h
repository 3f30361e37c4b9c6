// A simulated recording as pairing sees it, without pictures: streams of poses, and the corners of
// the frames with noise.

#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "host/pair/clock.h"
#include "simulator/random.h"
#include "simulator/recording.h"

namespace trackedcam::test {

inline host::PoseRecording RecordingOf(const std::vector<simulator::RecordedPose>& stream) {
  host::PoseRecording recording;
  recording.firstStamp = stream.front().stamp;
  for (const simulator::RecordedPose& recorded : stream) {
    const Eigen::Quaterniond q(recorded.pose.linear());
    recording.poses.push_back({recorded.stamp - recording.firstStamp,
                               {recorded.pose.translation(), {q.w(), q.x(), q.y(), q.z()}}});
  }
  return recording;
}

// The frames whose corners are seen, with noise of 0.05 pixels.
inline std::vector<host::SeenFrame> SeenIn(const simulator::Recording& recording,
                                           std::size_t every) {
  simulator::Random random(recording.options.shoot.seed, simulator::Draw::kPicture);
  std::vector<host::SeenFrame> seen;
  for (std::size_t i = 0; i < recording.frames.size(); i += every) {
    const simulator::RecordedFrame& frame = recording.frames[i];
    if (frame.isChartInside) {
      host::SeenFrame& own = seen.emplace_back();
      own.seconds = frame.time;
      own.Transform_Cam_Chart = frame.Transform_Cam_Chart;
      for (const Eigen::Vector2d& corner : frame.corners) {
        own.corners.push_back(corner + 0.05 * random.NormalVector().head<2>());
      }
    }
  }
  return seen;
}

inline crosscheck::Observations BoardOf(const simulator::Recording& recording) {
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

inline simulator::RecordingOptions NoisyRecording(std::uint64_t seed) {
  simulator::RecordingOptions options;
  options.shoot.seed = seed;
  options.shoot.trackerNoiseMm = 0.3;
  options.shoot.trackerNoiseDegrees = 0.05;
  return options;
}

}  // namespace trackedcam::test
