// The views of the chart: those of the photographs, and those that would reduce the uncertainty.

#pragma once

#include <optional>
#include <vector>

#include "crosscheck/evidence.h"
#include "crosscheck/result.h"
#include "crosscheck/solve.h"

namespace trackedcam::crosscheck {

View ViewOf(const Pose& Transform_Cam_Chart, const std::vector<Eigen::Vector3d>& board);

/// Transform_Cam_Chart of a view with the board's centre on the optical axis.
Pose PoseOfView(const View& view, const std::vector<Eigen::Vector3d>& board);

struct Suggestions {
  std::vector<SuggestedView> views;
  std::optional<int> photographsToHalve;
};

/// The views that add most information, each after those before it. In each, the whole paper is in
/// the image.
Suggestions SuggestViews(const Evidence& evidence, const Solution& solution);

}  // namespace trackedcam::crosscheck
