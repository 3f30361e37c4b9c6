// A simulated recording: a film of the chart, both trackers as continuous streams with a clock of
// their own, and the truth.

#pragma once

#include <vector>

#include <Eigen/Geometry>

#include "simulator/mounting.h"
#include "simulator/path.h"
#include "simulator/shoot_options.h"

namespace trackedcam::simulator {

struct RecordingOptions {
  /// Seed, lens, chart, image, optics, noise and steady errors of the trackers, mountings. What
  /// belongs to single photographs (their number and flaws, held poses, slips) is ignored, and so
  /// is delayMs for the one below.
  ShootOptions shoot;
  Motion motion = Motion::kHandheld;
  double seconds = 60;  // of film; the trackers are recorded 1 s longer at both ends
  double framesPerSecond = 25;
  double exposureSeconds = 0.005;  // of each frame; its time is the middle
  double readoutSeconds = 0;       // first to last row, rolling shutter
  double posesPerSecond = 120;     // of each tracker; the two streams are not sampled together
  double delayMs = 0;          // what the pose clock shows later than the frame clock, at time 0
  double driftPpm = 0;         // of the pose clock against the frame clock
  double firstStamp = 0;       // what the pose clock shows at time 0, seconds (an epoch, say)
  double droppedFraction = 0;  // of the poses
  double stampStepMs = 0;      // stamps are rounded to multiples of it; 0: they are not
};

/// As Photograph::trackedTc and trackedTr: in the axes of frames Tc and Tr. The files have those of
/// the tracking system.
struct RecordedPose {
  double stamp;            // of the pose clock, seconds
  Eigen::Isometry3d pose;  // Base <- tracker, as reported, with noise
};

struct RecordedFrame {
  double time;                            // of the frame clock, seconds; the first is 1
  Eigen::Isometry3d Transform_Cam_Chart;  // true, in the middle of the exposure
  bool isChartInside;                     // the paper is not cut off
  /// The inner corners as the frame shows them, pixels, row by row; the centre of the first pixel
  /// is (0, 0). With a rolling shutter, each is seen when its row is exposed.
  std::vector<Eigen::Vector2d> corners;
};

struct Recording {
  RecordingOptions options;
  Lens lens;
  Eigen::Isometry3d Transform_Cam_Tc;
  Mounting trueMounting;
  Mounting nominalMounting;
  std::vector<RecordedFrame> frames;
  std::vector<RecordedPose> camera;  // Tc
  std::vector<RecordedPose> chart;   // Tr
};

/// Geometry only; no image is rendered.
/// @throws std::invalid_argument if it cannot be simulated; the text says what to change.
Recording SimulateRecording(const RecordingOptions& options);

/// What the pose clock shows at this time of the frame clock, seconds.
double StampAt(const RecordingOptions& options, double time);

/// Where camera and chart are in this recording at each time of the frame clock.
Path PathOf(const RecordingOptions& options);

/// When a row of pixels is exposed, by the frame clock: the middle of its exposure.
double TimeOfRow(const RecordingOptions& options, double frameTime, double row);

}  // namespace trackedcam::simulator
