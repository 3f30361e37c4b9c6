// One simulated shoot: what is true, and what the tracking system reports.
//
// Frames: Cam (x right, y down, z forward), Tc (the tracker on the camera), Base (the tracking
// system), Tr (the tracker on the chart), Chart (origin in the first inner corner, x along a row, y
// along a column). Transform_A_B converts coordinates in frame B to frame A. Lengths are in metres.

#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <Eigen/Geometry>

#include "simulator/mounting.h"
#include "simulator/shoot_options.h"

namespace trackedcam::simulator {

/// What is wrong with a photograph; at most one thing.
enum class Flaw { kNone, kMissing, kNotAnImage, kWithoutChart, kSlippedTracker };

struct Photograph {
  std::string path;  // relative to the shoot's folder, with forward slashes
  Flaw flaw = Flaw::kNone;

  Eigen::Isometry3d Transform_Cam_Chart;
  Eigen::Isometry3d Transform_Base_Tc;
  Eigen::Isometry3d Transform_Base_Tr;
  Eigen::Isometry3d trackedTc;  // Transform_Base_Tc as it is reported, with noise, slips and flaws
  Eigen::Isometry3d trackedTr;  // Transform_Base_Tr as it is reported, with noise, slips and flaws
  bool isFrozen = false;        // reported are the poses of the photograph before

  /// The inner corners, pixels, row by row; the centre of the first pixel is (0, 0).
  std::vector<Eigen::Vector2d> corners;
};

struct Shoot {
  ShootOptions options;
  Lens lens;
  Eigen::Isometry3d Transform_Cam_Tc;
  Mounting trueMounting;     // of the chart on its tracker
  Mounting nominalMounting;  // what the user states
  std::vector<Photograph> photographs;

  /// One of the transforms for all photographs: Matrices(&Photograph::Transform_Cam_Chart).
  std::vector<Eigen::Matrix4d> Matrices(Eigen::Isometry3d Photograph::*transform) const;
};

/// Transform_Cam_Chart so long before a photograph, or after it if the time is negative.
Eigen::Isometry3d ChartBefore(const Shoot& shoot, std::size_t photograph, double milliseconds);

/// Simulates the geometry. It is fast, because no image is rendered.
/// @throws std::invalid_argument if the shoot cannot be simulated; the text says what to change.
Shoot SimulateShoot(const ShootOptions& options);

/// Transform_Cam_Chart of each photograph, good for solving a lens: the paper fills most of the
/// image and is never cut off, is tilted to all sides, rolled, near and far, and everywhere in the
/// image. On a turntable it is never cut off, but only rotates.
/// @throws std::invalid_argument if no such pose is found.
std::vector<Eigen::Isometry3d> DrawChartPoses(const ShootOptions& options);

}  // namespace trackedcam::simulator
