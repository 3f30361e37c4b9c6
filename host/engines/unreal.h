// The export to Unreal Engine: a camera below the component that the tracker moves.
//
// Left-handed, X forward, Y right, Z up, centimetres.

#pragma once

#include <string>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "host/engines/placement.h"

namespace trackedcam::host {

/// The default of the component's axes, in the tracker's reported axes.
constexpr const char* kUnrealParentAxes = "z,-x,y";

struct UnrealValues {
  std::vector<double> locationCm;
  std::vector<double> rotationDeg;     // roll, pitch, yaw, for an FRotator
  std::vector<double> quaternionXyzw;  // for an FQuat
  std::optional<EngineLens> lens;      // nothing if the input does not have it
  std::string parentAxes;
};

/// The rotation is also right at a pitch of 90 or -90 degrees, at which roll and yaw cannot be
/// separated.
/// @throws InputError if the parent axes are invalid.
/// @throws std::invalid_argument if the calibration has no rigid transform.
UnrealValues ToUnreal(const ExportInput& input);

/// The pose as "locationCm", "rotationDeg" and "quaternionXyzw", and the lens.
nlohmann::ordered_json UnrealJson(const UnrealValues& values);

/// The content of a .ulens file, which the editor imports as a Lens File asset: the lens, for one
/// zoom and focus.
/// @param name The lens's name.
/// @param hasNodalOffset Whether it has the pose too, for a camera that the tracker moves itself.
/// @throws std::runtime_error if the lens is unknown.
std::string LensFileText(const UnrealValues& values, const std::string& name, bool hasNodalOffset);

}  // namespace trackedcam::host
