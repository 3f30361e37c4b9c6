// The mounting of the chart's tracker in the axes that the tracking system reports.

#pragma once

#include "crosscheck/observations.h"

namespace trackedcam::host {

using crosscheck::Mounting;

/// @param fixed In the tracker's axes after the axis fix, as the library takes it: Rx · Ry · Rz and
///              a translation, where the reported x, y, z count as -x, -z, -y.
/// @return The same mounting, its three angles and its translation, in reported axes. The angle
///         about y is between -90 and 90 degrees.
Mounting ToReportedAxes(const Mounting& fixed);

/// The other way.
Mounting FromReportedAxes(const Mounting& reported);

}  // namespace trackedcam::host
