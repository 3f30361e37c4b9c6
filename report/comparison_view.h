// The result beside the cross-check, and the stated mounting beside the one that was found, axis by
// axis. The tables of both are what their charts are drawn from.

#pragma once

#include <nlohmann/json_fwd.hpp>

namespace trackedcam::report {

/// Transform_Cam_Tc: shifts along and turns about the axes of Cam.
nlohmann::ordered_json TransformComponents(const nlohmann::ordered_json& result);

/// Transform_Tr_Chart: shifts along the axes of Tr, turns about those of Chart, as the cross-check
/// gives the mounting's uncertainty.
nlohmann::ordered_json MountingComponents(const nlohmann::ordered_json& result);

}  // namespace trackedcam::report
