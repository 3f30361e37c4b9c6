// Where the chart is seen: poses that a lens can be solved from.

#pragma once

#include <vector>

#include <Eigen/Geometry>

#include "simulator/shoot_options.h"

namespace trackedcam::simulator {

/// Transform_Cam_Chart of each photograph. The paper is wholly and largely in the picture, tilted
/// to all sides, turned, near and far, and all over the picture.
/// @throws std::invalid_argument when no such pose can be found.
std::vector<Eigen::Isometry3d> DrawChartPoses(const ShootOptions& options);

}  // namespace trackedcam::simulator
