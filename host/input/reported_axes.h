// Poses and mountings in the axes that the tracking system reports, and in others.

#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "crosscheck/observations.h"
#include "host/input/data_file.h"

namespace trackedcam::host {

// The poses of a data file that was recorded in an engine, converted to reported axes and metres.

/// Axes and unit of the poses in a data file.
struct TrackerAxes {
  std::string_view name;  // on the command line
  const char* owner;      // for a sentence: "Unreal's axes"
  /// The reported x, y and z in the file's X, Y and Z: "-y,z,x".
  const char* reported;
  bool isLeftHanded;
  double unitsPerMetre;  // of the engine's positions
};

/// Those of a tracking system, which are not converted; those of a component of Unreal (X, Y, Z are
/// the reported z, -x, y) and of a transform of Unity (-x, y, z). A component with other axes may
/// be recorded as well, if the result is used below the same component.
extern const std::vector<TrackerAxes> kTrackerAxes;

struct TrackerUnit {
  std::string_view name;
  double unitsPerMetre;
};
extern const std::vector<TrackerUnit> kTrackerUnits;

/// Of a data file.
struct TrackerFrame {
  const TrackerAxes* axes = nullptr;  // null: reported
  const TrackerUnit* unit = nullptr;  // null: the unit of the axes
  bool hasQuaternionsXyzw = false;    // x, y, z, w in each row, not w, x, y, z
};

/// Whether the rows must be converted for the library.
bool IsConverted(const TrackerFrame& frame);

/// Axes and unit, never null.
const TrackerAxes& AxesOf(const TrackerFrame& frame);
const TrackerUnit& UnitOf(const TrackerFrame& frame);

/// "Unreal's axes, in cm, quaternions x, y, z, w".
std::string Describe(const TrackerFrame& frame);

/// The reported x, y, z of a quaternion by those in the file.
Eigen::Matrix3d QuaternionAxes(const TrackerFrame& frame);

/// The row with both poses in reported axes and metres, and quaternions w, x, y, z, which keep
/// their length. A row without a photograph, or that the library would read in another way, is not
/// changed.
/// @throws InputError if one of the 14 numbers is missing or not a number; it names the line.
DataRow InReportedAxes(const DataRow& row, const TrackerFrame& frame);

/// All rows; the same rows if there is nothing to convert.
std::vector<DataRow> InReportedAxes(const std::vector<DataRow>& rows, const TrackerFrame& frame);

// The mounting of the chart's tracker.

using crosscheck::Mounting;

/// @param fixed In the tracker's axes after the axis fix, as the library takes it: Rx · Ry · Rz and
///              a translation. The reported x, y, z count as -x, -z, -y there.
/// @return The same mounting in reported axes. The angle about y is between -90 and 90 degrees.
Mounting ToReportedAxes(const Mounting& fixed);

/// The inverse of ToReportedAxes.
Mounting FromReportedAxes(const Mounting& reported);

}  // namespace trackedcam::host
