#include "host/pair/pose_stream.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include <Eigen/Cholesky>

#include "crosscheck/reported_poses.h"
#include "crosscheck/statistics.h"
#include "host/input/input_error.h"

namespace trackedcam::host {
namespace {

using crosscheck::Log;
using crosscheck::Pose;
using crosscheck::Twist;

constexpr std::size_t kLeastPoses = 10;
constexpr double kReach = 5;             // intervals to each side that a parabola goes through
constexpr std::size_t kLeastOnSide = 2;  // of the samples of a parabola
constexpr double kGap = 3.5;             // intervals
constexpr std::size_t kLeastFrozen = 6;  // poses in a row
// A step is a jump if it is this many times as long as those around it, and not small.
constexpr double kJumpTimes = 8;
constexpr double kJumpMetres = 0.005;
constexpr double kJumpDegrees = 0.5;
// Less is no motion, however small the noise is.
constexpr double kRoundedMetres = 1e-5;
constexpr double kRoundedRadians = 2e-5;

bool AreEqual(const crosscheck::TrackerPose& a, const crosscheck::TrackerPose& b) {
  return a.position == b.position && a.quaternionWxyz == b.quaternionWxyz;
}

// As recorded, without the axes of the model: those are applied to the rows that are written.
Pose PoseOf(const crosscheck::TrackerPose& reported) {
  const Eigen::Vector4d q = reported.quaternionWxyz;
  if (!(q.norm() > 0) || !q.allFinite() || !reported.position.allFinite()) {
    throw InputError("a pose has a quaternion of length 0");
  }
  Pose pose = Pose::Identity();
  pose.linear() = Eigen::Quaterniond(q[0], q[1], q[2], q[3]).normalized().toRotationMatrix();
  pose.translation() = reported.position;
  return pose;
}

double MedianInterval(const std::vector<TimedPose>& poses) {
  std::vector<double> intervals;
  for (std::size_t i = 1; i < poses.size(); ++i) {
    intervals.push_back(poses[i].seconds - poses[i - 1].seconds);
  }
  return crosscheck::Median(std::move(intervals));
}

std::vector<bool> FrozenIn(const std::vector<TimedPose>& poses) {
  std::vector<bool> frozen(poses.size(), false);
  std::size_t begin = 0;
  for (std::size_t i = 1; i <= poses.size(); ++i) {
    if (i == poses.size() || !AreEqual(poses[i].pose, poses[begin].pose)) {
      if (i - begin >= kLeastFrozen) {
        std::fill(frozen.begin() + static_cast<std::ptrdiff_t>(begin),
                  frozen.begin() + static_cast<std::ptrdiff_t>(i), true);
      }
      begin = i;
    }
  }
  return frozen;
}

// Of each step from one pose to the next: how it compares with those around it.
struct Steps {
  std::vector<double> metres;
  std::vector<double> degrees;

  bool IsJump(std::size_t step) const {
    return IsOutside(metres, step, kJumpMetres) || IsOutside(degrees, step, kJumpDegrees);
  }

 private:
  static bool IsOutside(const std::vector<double>& steps, std::size_t step, double least) {
    constexpr std::size_t kAround = 6;
    if (!(steps[step] > least)) {
      return false;
    }
    const std::size_t from = step < kAround ? 0 : step - kAround;
    const std::size_t to = std::min(steps.size(), step + kAround + 1);
    const std::vector<double> around(steps.begin() + static_cast<std::ptrdiff_t>(from),
                                     steps.begin() + static_cast<std::ptrdiff_t>(to));
    return steps[step] > kJumpTimes * crosscheck::Median(around);
  }
};

double CubedTriangle(double share) {
  const double u = std::abs(share);
  const double base = 1 - u * u * u;
  return u < 1 ? base * base * base : 0;
}

}  // namespace

PoseStream::PoseStream(const PoseRecording& recording, double origin) {
  const std::vector<TimedPose>& poses = recording.poses;
  if (poses.size() < kLeastPoses) {
    throw InputError("a recording has " + std::to_string(poses.size()) + " poses");
  }
  interval_ = MedianInterval(poses);
  const std::vector<bool> frozen = FrozenIn(poses);
  const double shift = recording.firstStamp - origin;
  std::vector<Sample> samples;
  Steps steps;
  for (const TimedPose& timed : poses) {
    samples.push_back({shift + timed.seconds, PoseOf(timed.pose)});
    if (samples.size() > 1) {
      const Pose step = samples[samples.size() - 2].pose.inverse() * samples.back().pose;
      steps.metres.push_back(step.translation().norm());
      steps.degrees.push_back(crosscheck::RotationDegrees(step));
    }
  }
  first_ = samples.front().seconds;
  last_ = samples.back().seconds;
  Piece piece;
  const auto end = [&] {
    if (!piece.empty()) {
      pieces_.push_back(std::move(piece));
    }
    piece.clear();
  };
  for (std::size_t i = 0; i < samples.size(); ++i) {
    const bool isAfterGap = i > 0 && samples[i].seconds - samples[i - 1].seconds > kGap * interval_;
    const bool isAfterJump = i > 0 && !isAfterGap && !frozen[i] && steps.IsJump(i - 1);
    gaps += isAfterGap ? 1 : 0;
    jumps += isAfterJump ? 1 : 0;
    frozenPoses += frozen[i] ? 1 : 0;
    if (isAfterGap || isAfterJump || frozen[i]) {
      end();
    }
    if (!frozen[i]) {
      piece.push_back(samples[i]);
    }
  }
  end();
  MeasureNoise();
}

PoseStream::PoseStream(Pose fixed)
    : fixed_(std::move(fixed)),
      first_(-std::numeric_limits<double>::infinity()),
      last_(std::numeric_limits<double>::infinity()) {}

const PoseStream::Piece* PoseStream::PieceAt(double seconds) const {
  const auto after =
      std::upper_bound(pieces_.begin(), pieces_.end(), seconds,
                       [](double at, const Piece& piece) { return at < piece.front().seconds; });
  if (after == pieces_.begin() || std::prev(after)->back().seconds < seconds) {
    return nullptr;
  }
  return &*std::prev(after);
}

std::optional<SmoothPose> PoseStream::At(double seconds) const {
  if (IsFixed()) {
    return SmoothPose{fixed_, Twist::Zero()};
  }
  const Piece* piece = PieceAt(seconds);
  if (piece == nullptr) {
    return std::nullopt;
  }
  const double reach = kReach * interval_;
  const auto isBefore = [](const Sample& sample, double at) { return sample.seconds < at; };
  const auto begin = std::lower_bound(piece->begin(), piece->end(), seconds - reach, isBefore);
  const auto middle = std::lower_bound(begin, piece->end(), seconds, isBefore);
  const auto end = std::lower_bound(middle, piece->end(), seconds + reach, isBefore);
  if (static_cast<std::size_t>(middle - begin) < kLeastOnSide ||
      static_cast<std::size_t>(end - middle) < kLeastOnSide) {
    return std::nullopt;
  }
  const Pose reference = middle->pose;
  Eigen::Matrix3d normal = Eigen::Matrix3d::Zero();
  Eigen::Matrix<double, 3, 6> towards = Eigen::Matrix<double, 3, 6>::Zero();
  for (auto sample = begin; sample != end; ++sample) {
    const double x = (sample->seconds - seconds) / reach;
    const Eigen::Vector3d powers(1, x, x * x);
    const double weight = CubedTriangle(x);
    normal += weight * powers * powers.transpose();
    towards += weight * powers * Log(reference.inverse() * sample->pose).transpose();
  }
  const Eigen::Matrix<double, 3, 6> parabola = normal.ldlt().solve(towards);
  const Twist value = parabola.row(0).transpose();
  return SmoothPose{reference * crosscheck::Exp(value), parabola.row(1).transpose() / reach};
}

std::optional<Pose> PoseStream::StillAround(double seconds) const {
  constexpr double kMostReach = 0.5;  // seconds
  constexpr double kLeastReach = 0.15;
  constexpr std::size_t kLeastSamples = 10;
  constexpr double kDeviations = 3;  // of the scatter of noise
  if (IsFixed()) {
    return fixed_;
  }
  const Piece* piece = PieceAt(seconds);
  for (double reach = kMostReach; piece != nullptr && reach >= kLeastReach; reach *= 0.8) {
    if (piece != PieceAt(seconds - reach) || piece != PieceAt(seconds + reach)) {
      continue;
    }
    const auto isBefore = [](const Sample& sample, double at) { return sample.seconds < at; };
    const auto begin = std::lower_bound(piece->begin(), piece->end(), seconds - reach, isBefore);
    const auto end = std::lower_bound(begin, piece->end(), seconds + reach, isBefore);
    const auto count = static_cast<std::size_t>(end - begin);
    if (count < kLeastSamples) {
      break;
    }
    const Pose reference = begin->pose;
    Twist sum = Twist::Zero();
    for (auto sample = begin; sample != end; ++sample) {
      sum += Log(reference.inverse() * sample->pose);
    }
    const Pose mean = reference * crosscheck::Exp(sum / static_cast<double>(count));
    Twist squares = Twist::Zero();
    for (auto sample = begin; sample != end; ++sample) {
      squares += Log(mean.inverse() * sample->pose).cwiseAbs2();
    }
    const Twist scatter = (squares / static_cast<double>(count - 1)).cwiseSqrt();
    const double times = 1 + kDeviations / std::sqrt(2 * static_cast<double>(count));
    if (scatter.tail<3>().maxCoeff() <= std::max(times * metres_, kRoundedMetres) &&
        scatter.head<3>().maxCoeff() <= std::max(times * radians_, kRoundedRadians)) {
      return mean;
    }
  }
  return std::nullopt;
}

// From second differences, in which motion is far smaller than noise; the median, because fast
// motion is not.
void PoseStream::MeasureNoise() {
  std::vector<double> metres;
  std::vector<double> radians;
  for (const Piece& piece : pieces_) {
    for (std::size_t i = 1; i + 1 < piece.size(); ++i) {
      const Twist to = Log(piece[i].pose.inverse() * piece[i + 1].pose);
      const Twist from = Log(piece[i].pose.inverse() * piece[i - 1].pose);
      radians.push_back((to + from).head<3>().norm());
      metres.push_back((to + from).tail<3>().norm());
    }
  }
  // Of the length of three normal values of variance 6, the median.
  constexpr double kMedian = 1.5382 * 2.4495;
  if (!metres.empty()) {
    metres_ = crosscheck::Median(std::move(metres)) / kMedian;
    radians_ = crosscheck::Median(std::move(radians)) / kMedian;
  }
}

}  // namespace trackedcam::host
