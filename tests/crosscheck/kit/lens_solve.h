// The lens that corners say, with a pose for each photograph, by least squares from the truth on.

#pragma once

#include <vector>

#include "crosscheck/observations.h"
#include "crosscheck/twist.h"
#include "simulator/lens.h"

namespace trackedcam::test {

/// All six values are sought. Derivatives are differences of projections: slow and plain.
simulator::Lens SolveLens(simulator::Lens lens, std::vector<crosscheck::Pose> Transform_Cam_Chart,
                          const std::vector<Eigen::Vector3d>& board,
                          const std::vector<crosscheck::Photograph>& photographs);

}  // namespace trackedcam::test
