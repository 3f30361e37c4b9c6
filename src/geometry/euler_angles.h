// A rotation as the three angles that an engine wants.
//
// Both conversions narrow the quaternion to single precision first and work in it but where the
// text of the functions says otherwise: engines show the digits that come of it. They differ in the
// order of rotations, in the test for gimbal lock and in what happens then.

#pragma once

#include <array>

#include "core/result_code.h"
#include "core/run_log.h"
#include "geometry/quaternion.h"

namespace trackedcam {

/// Three angles in degrees.
using EulerAngles = std::array<float, 3>;

/// Roll, pitch and yaw: the rotation is Rz(yaw) * Ry(-pitch) * Rx(-roll).
/// Returns 0, or 3 in gimbal lock (a pitch within about 0.08 degree of 90), which leaves the
/// angles.
ResultCode QuatToEulerUE(RunLog log, const Quaternion& quaternion, EulerAngles& angles);

/// With o = -angles the rotation is Ry(o[1]) * Rx(o[0]) * Rz(o[2]). In gimbal lock the first angle
/// is 90 or -90, the second -0 and the third takes what is left. Always returns 0.
ResultCode QuatToEulerAximmetry(RunLog log, const Quaternion& quaternion, EulerAngles& angles);

}  // namespace trackedcam
