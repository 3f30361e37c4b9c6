// The axes of the thing that the tracker moves in an engine: the camera's parent.

#pragma once

#include <string>

#include <Eigen/Core>

namespace trackedcam::host {

/// An engine's X, Y and Z in the tracker's reported axes, as in "z,-x,y".
struct ParentAxes {
  std::string text;
  Eigen::Matrix3d fromReported;  // takes coordinates in reported axes into the engine's
};

/// The forms that --parent-axes takes by name, whatever the engine: forward is the reported z or
/// its opposite, up is the reported y.
constexpr const char* kZForward = "z-forward";
constexpr const char* kMinusZForward = "minus-z-forward";

/// @param text Three of x, y, z, each once and with or without a minus, or one of the names.
/// @param zForward What the engine calls z-forward, as a text of the first form.
/// @throws InputError when it is neither, or when the axes are right-handed: the reported ones are,
///         and the engines that ask are left-handed.
ParentAxes ParseParentAxes(const std::string& text, const std::string& zForward);

}  // namespace trackedcam::host
