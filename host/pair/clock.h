// When the trackers were where a frame shows them: the clock of the poses against that of the film.

#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <vector>

#include "crosscheck/observations.h"
#include "crosscheck/twist.h"
#include "host/pair/pose_stream.h"
#include "host/run/library_stages.h"

namespace trackedcam::host {

/// A frame in which the board was found.
struct SeenFrame {
  double seconds = 0;  // of the film's clock
  BoardCorners corners;
  crosscheck::Pose Transform_Cam_Chart;
};

/// Pose time = film time + delay + drift * (film time - mean time).
struct Clock {
  double delay = 0;        // seconds
  double delayHalf = 0;    // width of the 95 % interval
  double drift = 0;        // seconds per second; 0 if none is sure
  double driftHalf = 0;    // width of its 95 % interval
  double meanSeconds = 0;  // of the film's clock
  double trackerNoiseMm = 0;
  double trackerNoiseDegrees = 0;

  double PoseTime(double filmSeconds) const {
    return filmSeconds + delay + drift * (filmSeconds - meanSeconds);
  }
};

/// Both trackers at one time.
struct RelativePose {
  crosscheck::TrackerPose camera;  // as recorded
  crosscheck::TrackerPose chart;
  crosscheck::Twist perSecond;  // left twist of Transform_Tc_Tr, in the axes of the model
};

/// As the trackers report it.
crosscheck::TrackerPose RecordedPose(const crosscheck::Pose& pose);

/// Nothing where one of the streams has nothing.
std::optional<RelativePose> RelativeAt(const PoseStream& camera, const PoseStream& chart,
                                       double seconds);

/// From the speeds of rotation of camera against chart, as the frames and as the trackers show
/// them: neither transform is needed for that.
struct CoarseDelay {
  double seconds = 0;
  double correlation = 0;  // of the speeds there
  double nextBest = 0;     // the same at another place; close to it: the motion repeats itself
};

/// @param frames In order of time.
/// @return Nothing if recording and film never overlap by half of the frames.
std::optional<CoarseDelay> FindCoarseDelay(const std::vector<SeenFrame>& frames,
                                           const PoseStream& camera, const PoseStream& chart);

/// Delay and drift together with both transforms and the noise of the trackers, by least squares.
/// @param frames So far apart that their poses share no samples.
/// @param board For its lens and size; its photographs are ignored.
/// @param delay To begin with, right within some 0.1 s.
/// @return Nothing if they are not determined.
std::optional<Clock> FitClock(const std::vector<SeenFrame>& frames, const PoseStream& camera,
                              const PoseStream& chart, const crosscheck::Observations& board,
                              double delay);

}  // namespace trackedcam::host
