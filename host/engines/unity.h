// The export to Unity: a camera below the transform that the tracker moves.
//
// Left-handed, X right, Y up, Z forward, metres.

#pragma once

#include <string>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "host/engines/placement.h"

namespace trackedcam::host {

/// The default of the transform's axes, in the tracker's reported axes.
constexpr const char* kUnityParentAxes = "-x,y,z";

/// The lens as Unity's physical camera. Unity has no effect with this model of distortion.
struct UnityLens {
  EngineLens values;
  /// In parts of the sensor. A lens that is shifted right and up moves the image left and down.
  std::array<double, 2> lensShift = {};
};

struct UnityValues {
  std::vector<double> localPosition;      // metres
  std::vector<double> localRotationXyzw;  // for a Quaternion
  std::vector<double> localEulerAngles;   // degrees; Unity rotates about z, then x, then y
  std::optional<UnityLens> lens;          // nothing if the input does not have it
  std::string parentAxes;
};

/// The rotation is also right if the camera looks along the transform's y axis, so that the angles
/// about y and z cannot be separated.
/// @throws InputError if the parent axes are invalid.
/// @throws std::invalid_argument if the calibration has no rigid transform.
UnityValues ToUnity(const ExportInput& input);

/// The keys are the names of the fields of Transform and Camera.
nlohmann::ordered_json UnityJson(const UnityValues& values);

}  // namespace trackedcam::host
