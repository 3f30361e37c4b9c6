// The mounting of the chart's tracker, as users state it.

#pragma once

#include <optional>

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

// From the reported rows to Transform_Tc_Tr, as they stand or read in another way.

/// What a row may have been meant as.
enum class Meaning {
  kAsRead,
  kQuaternionsInverted,
  kOrderXyzw,
  kTrackersExchanged,
  kMillimetres,
  kCentimetres,
  kLeftHanded,
  kMirroredX,  // positions only, as when one axis was turned round on export
  kMirroredY,
  kMirroredZ,
};

/// Nothing for numbers that are none, a quaternion of no length or a position beyond 10,000 km.
std::optional<Pose> Transform_Base_Tracker(const TrackerPose& reported, bool invertQuaternion,
                                           Meaning meaning);

/// Of one row.
std::optional<Pose> TransformOfRow(const Photograph& row, bool invertQuaternions, Meaning meaning);

}  // namespace trackedcam::crosscheck
