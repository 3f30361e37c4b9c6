// The poses that users state and tracking systems report, as transforms of the model.

#pragma once

#include <optional>

#include "crosscheck/observations.h"
#include "crosscheck/result.h"
#include "crosscheck/twist.h"

namespace trackedcam::crosscheck {

/// From a tracker's reported axes to those of the model: -x, -z, -y. Its own inverse.
Eigen::Matrix3d AxisFix();

/// Transform_Tr_Chart = [ Rx · Ry · Rz | translation ]
Pose TransformOf(const Mounting& mounting);

/// The inverse of TransformOf, with the angle about y from -90 to 90 degrees.
Mounting MountingOf(const Pose& Transform_Tr_Chart);

/// How all rows are read.
struct RowForm {
  bool invertQuaternions = false;
  Eigen::Matrix3d quaternionAxes = Eigen::Matrix3d::Identity();  // see Observations
};

RowForm FormOf(const Observations& observations);

/// Nothing for values that are not finite, a quaternion of length 0 or a position beyond 10,000 km.
/// @param reading Another way to read it than as it is.
std::optional<Pose> Transform_Base_Tracker(const TrackerPose& reported, const RowForm& form,
                                           std::optional<RowReading> reading = {});

/// Transform_Tc_Tr of one row.
std::optional<Pose> TransformOfRow(const Photograph& row, const RowForm& form);

/// The same, with another reading; for some, the trackers' poses are in different rows.
std::optional<Pose> TransformOfRows(const TrackerPose& cameraRow, const TrackerPose& chartRow,
                                    const RowForm& form, std::optional<RowReading> reading = {});

}  // namespace trackedcam::crosscheck
