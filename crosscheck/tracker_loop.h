// From the reported rows to Transform_Tc_Tr, as they stand or read in another way.

#pragma once

#include <optional>

#include "crosscheck/observations.h"
#include "crosscheck/twist.h"

namespace trackedcam::crosscheck {

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
