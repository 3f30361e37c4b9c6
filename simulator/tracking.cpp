#include "simulator/tracking.h"

#include <cmath>

#include "simulator/mounting.h"

namespace trackedcam::simulator {
namespace {

Eigen::Isometry3d RotationBy(const Eigen::Vector3d& rotation) {
  Eigen::Isometry3d pose = Eigen::Isometry3d::Identity();
  if (const double angle = rotation.norm(); angle > 0) {
    pose.rotate(Eigen::AngleAxisd(angle, rotation / angle));
  }
  return pose;
}

// The pose after this share of the way back.
Eigen::Isometry3d OnTheWayBack(const Eigen::Isometry3d& from, const Eigen::Isometry3d& to,
                               double share) {
  Eigen::Isometry3d pose = from;
  pose.translation() += share * (to.translation() - from.translation());
  pose.linear() = Eigen::Quaterniond(from.linear())
                      .slerp(share, Eigen::Quaterniond(to.linear()))
                      .toRotationMatrix();
  return pose;
}

// A hand turns by as much as an arm of this length needs.
Eigen::Isometry3d Trembled(const Eigen::Isometry3d& pose, double metres, Random& random) {
  constexpr double kArmMetres = 0.3;
  const Eigen::Vector3d along = random.NormalVector();
  const Eigen::Vector3d about = random.NormalVector();
  return pose * Eigen::Translation3d(metres * along) * RotationBy(metres / kArmMetres * about);
}

// An error that belongs to a pose and changes smoothly from one to another, as that of a measuring
// arm. Each element has a root mean square of about 1.
Eigen::Vector3d SmoothError(const Eigen::Isometry3d& pose, double phase) {
  const Eigen::Matrix3d& rotation = pose.linear();
  Eigen::Vector3d error;
  for (int axis = 0; axis < 3; ++axis) {
    const double argument = 3 * rotation(axis, (axis + 1) % 3) +
                            2 * rotation((axis + 2) % 3, axis) + 4 * pose.translation()[axis] +
                            2 * axis + phase;
    error[axis] = std::sqrt(2.0) * std::sin(argument);
  }
  return error;
}

}  // namespace

TrackerPoses PosesBefore(const ShootOptions& options, int photograph, const TrackerPoses& at,
                         const std::optional<TrackerPoses>& previous, double milliseconds) {
  if (options.tremorMmPerSecond > 0) {
    Random random(options.seed, Draw::kTremor, photograph);
    const double metres = options.tremorMmPerSecond * 1e-6 * milliseconds;
    TrackerPoses before;
    before.Transform_Base_Tc = Trembled(at.Transform_Base_Tc, metres, random);
    before.Transform_Base_Tr = Trembled(at.Transform_Base_Tr, metres, random);
    return before;
  }
  if (milliseconds == 0 || !previous) {
    return at;
  }
  const double share = milliseconds / kMsBetweenPhotographs;
  return {OnTheWayBack(at.Transform_Base_Tc, previous->Transform_Base_Tc, share),
          OnTheWayBack(at.Transform_Base_Tr, previous->Transform_Base_Tr, share)};
}

Eigen::Isometry3d InReportedAxes(const Eigen::Isometry3d& pose) {
  Eigen::Matrix3d axes;
  axes << -1, 0, 0, 0, 0, -1, 0, -1, 0;
  Eigen::Isometry3d reported = pose;
  reported.linear() = pose.linear() * axes;
  return reported;
}

TrackerPoses Tracking::Report(const TrackerPoses& truth, Random& random) {
  const TrackerPoses seen = PosesBefore(options_, photograph_, truth, before_, options_.delayMs);
  TrackerPoses reported;
  reported.Transform_Base_Tc =
      WithNoise(Distorted(Mounted(seen.Transform_Base_Tc)), noiseOfTc_, random);
  reported.Transform_Base_Tr = WithNoise(Distorted(seen.Transform_Base_Tr), noiseOfTr_, random);
  before_ = truth;
  ++photograph_;
  return reported;
}

// Where the camera's tracker is on its mount, which bends under its weight and has two seats.
Eigen::Isometry3d Tracking::Mounted(const Eigen::Isometry3d& Transform_Base_Tc) const {
  Eigen::Isometry3d mounted = Transform_Base_Tc;
  mounted.translation().y() -= options_.sagMm * kMetresPerMm;
  if (options_.looseMm != 0) {
    // A loose tracker stays in its seat as long as the camera is held.
    Random random(options_.seed, Draw::kSeat, photograph_ / options_.heldPoses);
    const double side = random.Uniform(0, 1) < 0.5 ? -0.5 : 0.5;
    mounted.translate(side * options_.looseMm * kMetresPerMm * Eigen::Vector3d(2, -1, 2) / 3);
  }
  return mounted;
}

// Lines are bent, lengths are measured wrongly, and each pose has its own error.
Eigen::Isometry3d Tracking::Distorted(const Eigen::Isometry3d& pose) const {
  Eigen::Isometry3d distorted = pose;
  const double aside = pose.translation().x() - kMiddleOfVolume.x();
  distorted.translation().y() += options_.volumeBendMm * kMetresPerMm * aside * aside;
  distorted.translation() *= options_.trackerScale;
  if (options_.poseErrorMm != 0 || options_.poseErrorDegrees != 0) {
    distorted.pretranslate(options_.poseErrorMm * kMetresPerMm * SmoothError(pose, 0));
    distorted = distorted * RotationBy(Radians(options_.poseErrorDegrees) * SmoothError(pose, 1));
  }
  return distorted;
}

// Successive noise has the stated correlation and always the same spread.
Eigen::Isometry3d Tracking::WithNoise(const Eigen::Isometry3d& pose, std::optional<Noise>& noise,
                                      Random& random) const {
  Noise next;
  next.rotation = Radians(options_.trackerNoiseDegrees) * random.NormalVector();
  next.translation = options_.trackerNoiseMm * kMetresPerMm * random.NormalVector();
  if (noise) {
    const double kept = options_.noiseCorrelation;
    const double added = std::sqrt(1 - kept * kept);
    next.rotation = kept * noise->rotation + added * next.rotation;
    next.translation = kept * noise->translation + added * next.translation;
  }
  noise = next;
  return pose * Eigen::Translation3d(next.translation) * RotationBy(next.rotation);
}

}  // namespace trackedcam::simulator
