// The camera below a component of Unreal Engine that the tracker moves.
//
// Left-handed, X forward, Y right, Z up, centimetres.

#pragma once

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "host/engines/placement.h"

namespace trackedcam::host {

/// The component's axes in reported ones unless others are named.
constexpr const char* kUnrealParentAxes = "z,-x,y";

struct UnrealFigures {
  std::vector<double> locationCm;
  std::vector<double> rotationDeg;     // roll, pitch, yaw as of an FRotator
  std::vector<double> quaternionXyzw;  // as of an FQuat
  std::optional<EngineLens> lens;      // nothing where the result does not tell it
  std::string parentAxes;
};

/// At a pitch of 90 or -90 degrees, where roll and yaw are one turn, the figures still give the
/// right rotation.
/// @throws InputError for parent axes that cannot be.
/// @throws std::invalid_argument when the transform is none.
UnrealFigures ToUnreal(const HandOver& handOver);

/// The keys of a Lens File, and the placement below "locationCm", "rotationDeg", "quaternionXyzw".
nlohmann::ordered_json UnrealJson(const UnrealFigures& figures);

/// The content of a .ulens file, which the editor imports as a Lens File asset: lens and placement
/// as nodal offset, of one zoom and focus.
/// @param name Of the lens.
/// @throws std::runtime_error when the lens is not known.
std::string LensFileText(const UnrealFigures& figures, const std::string& name);

}  // namespace trackedcam::host
