// The Euler angles of a rotation, as engines use them.
//
// Both conversions narrow the quaternion to single precision and compute in it, except the terms
// that euler_angles.cpp names: engines show the resulting digits. The conversions differ in the
// order of rotations, in the test for gimbal lock and in what they do then.

#pragma once

#include <array>

#include "core/result_code.h"
#include "core/run_log.h"
#include "geometry/quaternion.h"

namespace trackedcam {

/// Three angles in degrees.
using EulerAngles = std::array<float, 3>;

/// angles = roll, pitch, yaw: the rotation is Rz(yaw) * Ry(-pitch) * Rx(-roll).
/// @return 0, or 3 in gimbal lock (pitch within about 0.08 degree of 90 or -90). angles is then
///   unchanged.
ResultCode QuatToEulerUE(RunLog log, const Quaternion& quaternion, EulerAngles& angles);

/// With o = -angles, the rotation is Ry(o[1]) * Rx(o[0]) * Rz(o[2]). In gimbal lock (the first
/// angle within about 0.09 degree of 90 or -90), the first angle is 90 or -90, the second is -0 and
/// the third is the remaining rotation.
/// @return 0 always.
ResultCode QuatToEulerAximmetry(RunLog log, const Quaternion& quaternion, EulerAngles& angles);

}  // namespace trackedcam
