// The mounting of the chart's tracker, as users state it.

#pragma once

#include "crosscheck/observations.h"
#include "crosscheck/twist.h"

namespace trackedcam::crosscheck {

/// Transform_Tr_Chart = [ Rx · Ry · Rz | translation ]
Pose TransformOf(const Mounting& mounting);

/// The inverse of TransformOf, the angle about y within a quarter turn.
Mounting MountingOf(const Pose& Transform_Tr_Chart);

/// Turns about x, y and z, in this order: the product of three of them is what the letters say.
Eigen::Matrix3d TurnAbout(int axis, double degrees);

/// From a tracker's own axes to those of the solving: -x, -z, -y. Its own inverse.
Eigen::Matrix3d AxisFix();

}  // namespace trackedcam::crosscheck
