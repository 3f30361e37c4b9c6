// The result beside the cross-check, and the stated mounting beside the one that was found, axis by
// axis. The tables of both are what their charts are drawn from.

#pragma once

#include <array>
#include <filesystem>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "report/page.h"

namespace trackedcam::report {

/// Transform_Cam_Tc: shifts along and turns about the axes of Cam.
nlohmann::ordered_json TransformComponents(const nlohmann::ordered_json& result);

/// Transform_Tr_Chart: shifts along the axes of Tr, turns about those of Chart, as the cross-check
/// gives the mounting's uncertainty.
nlohmann::ordered_json MountingComponents(const nlohmann::ordered_json& result);

// Rotations side by side.

using Rotation = std::array<double, 9>;  // row by row

/// Rx(ax) · Ry(ay) · Rz(az) of angles in degrees, as mountings are stated.
Rotation RotationOfAngles(const std::array<double, 3>& degrees);

Rotation Product(const Rotation& a, const Rotation& b);
Rotation Inverse(const Rotation& a);

/// Axis times angle, degrees, about the axes of the frame that the rotation leads to. Below a half
/// turn.
std::array<double, 3> TurnDegrees(const Rotation& rotation);

// The photographs of a run, in the order that the page counts them.

/// One object for each photograph: those of the cross-check in their order, then those that never
/// got so far. Where the result lists all rows under `photographs`, that order instead.
nlohmann::ordered_json PhotographList(const nlohmann::ordered_json& result,
                                      const std::vector<Thumbnail>& thumbnails,
                                      const std::filesystem::path& pageFolder);

/// What the template shows of a result: its figures as text, and which of its parts there are.
/// Words are the template's.
nlohmann::ordered_json PageView(const nlohmann::ordered_json& result,
                                const std::vector<Thumbnail>& thumbnails,
                                const std::filesystem::path& pageFolder);

}  // namespace trackedcam::report
