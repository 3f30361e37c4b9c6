// What a tracking system reports of the two trackers: their poses with the flaws of their mounts,
// of the tracking volume and of time, and with noise.

#pragma once

#include <optional>

#include <Eigen/Geometry>

#include "simulator/random.h"
#include "simulator/shoot_options.h"

namespace trackedcam::simulator {

/// About where the chart is held, in frame Base, whose y axis points up; metres.
inline const Eigen::Vector3d kMiddleOfVolume(0.4, 1.1, -1.8);

/// The pose as the files of the tracking system have it. It reports other axes of a tracker: its
/// x, y, z are -x, -z, -y here.
Eigen::Isometry3d InReportedAxes(const Eigen::Isometry3d& pose);

/// The poses of both trackers.
struct TrackerPoses {
  Eigen::Isometry3d Transform_Base_Tc = Eigen::Isometry3d::Identity();
  Eigen::Isometry3d Transform_Base_Tr = Eigen::Isometry3d::Identity();
};

/// Where both trackers were so long before a photograph, or will be if the time is negative. The
/// hands move evenly from the photograph before, if there is one; or hold still and tremble.
TrackerPoses PosesBefore(const ShootOptions& options, int photograph, const TrackerPoses& at,
                         const std::optional<TrackerPoses>& previous, double milliseconds);

class Tracking {
 public:
  /// The options must outlive the object.
  explicit Tracking(const ShootOptions& options) : options_(options) {}

  /// What is reported for the next photograph.
  /// @param truth Where the trackers are if nothing has moved on its mount.
  TrackerPoses Report(const TrackerPoses& truth, Random& random);

 private:
  struct Noise {
    Eigen::Vector3d rotation;     // radians
    Eigen::Vector3d translation;  // metres
  };

  Eigen::Isometry3d Mounted(const Eigen::Isometry3d& Transform_Base_Tc) const;
  Eigen::Isometry3d Distorted(const Eigen::Isometry3d& pose) const;
  Eigen::Isometry3d WithNoise(const Eigen::Isometry3d& pose, std::optional<Noise>& noise,
                              Random& random) const;

  const ShootOptions& options_;
  int photograph_ = 0;  // the next one
  // Of the photograph before; none before the first one.
  std::optional<TrackerPoses> before_;
  std::optional<Noise> noiseOfTc_;
  std::optional<Noise> noiseOfTr_;
};

}  // namespace trackedcam::simulator
