// Where the chart is seen: poses that a lens can be solved from.

#pragma once

#include <string>
#include <vector>

#include <Eigen/Geometry>

#include "simulator/mounting.h"
#include "simulator/shoot_options.h"

namespace trackedcam::simulator {

/// Transform_Cam_Chart of each photograph. The paper is wholly and largely in the picture, tilted
/// to all sides, turned, near and far, and all over the picture.
/// @throws std::invalid_argument when no such pose can be found.
std::vector<Eigen::Isometry3d> DrawChartPoses(const ShootOptions& options);

// One simulated shoot: what is true, and what the tracking system says.
//
// Frames: Cam (x right, y down, z forward), Tc (the tracker on the camera), Base (the tracking
// system), Tr (the tracker on the chart), Chart (origin in the first inner corner, x along a row, y
// along a column). Transform_A_B takes coordinates of frame B into frame A. Lengths are metres.

/// What is wrong with a photograph; at most one thing.
enum class Flaw { kNone, kMissing, kNotAnImage, kWithoutChart, kSlippedTracker };

struct Photograph {
  std::string path;  // relative to the shoot's folder, with forward slashes
  Flaw flaw = Flaw::kNone;

  Eigen::Isometry3d Transform_Cam_Chart;
  Eigen::Isometry3d Transform_Base_Tc;
  Eigen::Isometry3d Transform_Base_Tr;
  Eigen::Isometry3d trackedTc;  // Transform_Base_Tc with the tracking system's noise and slips
  Eigen::Isometry3d trackedTr;  // Transform_Base_Tr with the same

  /// The inner corners, pixels; the centre of the first pixel is (0, 0). Row by row.
  std::vector<Eigen::Vector2d> corners;
};

struct Shoot {
  ShootOptions options;
  Lens lens;
  Eigen::Isometry3d Transform_Cam_Tc;
  Mounting trueMounting;     // of the chart on its tracker
  Mounting nominalMounting;  // what the user believes
  std::vector<Photograph> photographs;

  /// One of the transforms for all photographs: Matrices(&Photograph::Transform_Cam_Chart).
  std::vector<Eigen::Matrix4d> Matrices(Eigen::Isometry3d Photograph::*transform) const;
};

/// Geometry only, so it is quick: no picture is made.
/// @throws std::invalid_argument for a shoot that cannot be made; it says what to change.
Shoot SimulateShoot(const ShootOptions& options);

}  // namespace trackedcam::simulator
