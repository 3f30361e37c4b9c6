// Rotations side by side.

#pragma once

#include <array>

namespace trackedcam::report {

using Rotation = std::array<double, 9>;  // row by row

/// Rx(ax) · Ry(ay) · Rz(az) of angles in degrees, as mountings are stated.
Rotation RotationOfAngles(const std::array<double, 3>& degrees);

Rotation Product(const Rotation& a, const Rotation& b);
Rotation Inverse(const Rotation& a);

/// Axis times angle, degrees, about the axes of the frame that the rotation leads to. Below a half
/// turn.
std::array<double, 3> TurnDegrees(const Rotation& rotation);

}  // namespace trackedcam::report
