// The camera below a transform of Unity that the tracker moves.
//
// Left-handed, X right, Y up, Z forward, metres.

#pragma once

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "host/engines/placement.h"

namespace trackedcam::host {

/// The transform's axes in reported ones unless others are named.
constexpr const char* kUnityParentAxes = "-x,y,z";

/// How Unity's physical camera shows the lens without its distortion, for which it has no effect of
/// this model.
struct UnityLens {
  EngineLens figures;
  /// In parts of the sensor. A lens that is shifted right and up moves the picture left and down.
  std::array<double, 2> lensShift = {};
};

struct UnityFigures {
  std::vector<double> localPosition;      // metres
  std::vector<double> localRotationXyzw;  // as of a Quaternion
  std::vector<double> localEulerAngles;   // degrees; Unity turns about z, then x, then y
  std::optional<UnityLens> lens;          // nothing where the result does not tell it
  std::string parentAxes;
};

/// When the camera looks along the transform's y axis, where the angles about y and z are one turn,
/// the figures still give the right rotation.
/// @throws InputError for parent axes that cannot be.
/// @throws std::invalid_argument when the transform is none.
UnityFigures ToUnity(const HandOver& handOver);

/// By the names of the fields of Transform and Camera.
nlohmann::ordered_json UnityJson(const UnityFigures& figures);

}  // namespace trackedcam::host
