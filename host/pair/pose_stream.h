// The poses of one tracker as a function of time, smoothed over a few samples.

#pragma once

#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

#include "crosscheck/twist.h"
#include "host/recording/pose_recording.h"

namespace trackedcam::host {

struct SmoothPose {
  crosscheck::Pose pose;        // Base <- tracker, in the axes of the recording
  crosscheck::Twist perSecond;  // a right twist: about and along the axes of the tracker
};

class PoseStream {
 public:
  /// @param origin The stamp of the recording's clock that is second 0 from here on.
  /// @throws InputError if the recording has fewer than ten poses, or quaternions of length 0.
  PoseStream(const PoseRecording& recording, double origin);

  /// A tracker that never moved.
  explicit PoseStream(crosscheck::Pose fixed);

  /// By a parabola through the samples around, weighted smoothly: between two samples alone the
  /// noise would be averaged most in the middle, which makes times wrong. Nothing next to a gap, a
  /// jump or frozen poses, and at the ends.
  std::optional<SmoothPose> At(double seconds) const;

  /// The mean of the poses around, for up to half a second to each side, as long as they scatter no
  /// more than the noise from sample to sample: the tracker stood still. Nothing if it did not for
  /// 0.3 s, and over a gap, a jump or frozen poses.
  std::optional<crosscheck::Pose> StillAround(double seconds) const;

  bool IsFixed() const { return interval_ == 0; }
  double First() const { return first_; }
  double Last() const { return last_; }
  double Interval() const { return interval_; }  // between samples, the median; seconds

  std::size_t gaps = 0;
  std::size_t jumps = 0;
  std::size_t frozenPoses = 0;  // that repeat the one before, digit for digit

 private:
  struct Sample {
    double seconds;
    crosscheck::Pose pose;
  };
  using Piece = std::vector<Sample>;  // without an interruption

  const Piece* PieceAt(double seconds) const;
  void MeasureNoise();

  std::vector<Piece> pieces_;
  crosscheck::Pose fixed_ = crosscheck::Pose::Identity();
  double first_ = 0;
  double last_ = 0;
  double interval_ = 0;
  double metres_ = 0;   // noise of a sample, standard deviation along each axis
  double radians_ = 0;  // the same about each axis
};

}  // namespace trackedcam::host
