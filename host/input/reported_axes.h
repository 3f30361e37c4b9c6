// The axes in which the library counts at a tracker.

#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <Eigen/Core>

#include "crosscheck/observations.h"
#include "host/input/data_file.h"

namespace trackedcam::host {

/// Takes coordinates in a tracker's reported axes into those of the library and back: of the
/// reported x, y, z it uses -x, -z, -y.
inline Eigen::Matrix3d AxisFix() {
  Eigen::Matrix3d fix;
  fix << -1, 0, 0,  //
      0, 0, -1,     //
      0, -1, 0;
  return fix;
}

// Poses as an engine's components hold them, turned into those that a tracking system reports.

/// In which axes and unit a data file holds the poses of both trackers.
struct TrackerAxes {
  std::string_view name;  // on the command line
  const char* owner;      // for a sentence: "in Unreal's axes"
  /// The reported x, y and z in the file's X, Y and Z: "-y,z,x".
  const char* reported;
  bool isLeftHanded;
  double unitsPerMetre;  // as its components hold them
};

/// A tracking system's own, which are not converted; those of a component of Unreal (X, Y, Z are
/// the reported z, -x, y) and of a transform of Unity (-x, y, z). A component in other axes is
/// served as well when the result is used below the same component.
extern const std::vector<TrackerAxes> kTrackerAxes;

struct TrackerUnit {
  std::string_view name;
  double unitsPerMetre;
};
extern const std::vector<TrackerUnit> kTrackerUnits;

/// What a data file holds.
struct TrackerFrame {
  const TrackerAxes* axes = nullptr;  // nothing: reported
  const TrackerUnit* unit = nullptr;  // nothing: that of the axes
};

/// Whether rows must be converted before the library can read them.
bool IsConverted(const TrackerFrame& frame);

/// "Unreal's axes, in cm".
std::string Describe(const TrackerFrame& frame);

/// The row with both poses in reported axes and metres; its quaternions, which stand in the order
/// w, x, y, z in every file, keep their length. A row without a photograph, or that is written
/// otherwise than the library reads, stays as it is.
/// @throws InputError when one of the 14 figures is missing or no number; it names the line.
DataRow InReportedAxes(const DataRow& row, const TrackerFrame& frame);

/// All rows; the same ones where nothing is to be converted.
std::vector<DataRow> InReportedAxes(const std::vector<DataRow>& rows, const TrackerFrame& frame);

// The mounting of the chart's tracker in the axes that the tracking system reports.

using crosscheck::Mounting;

/// @param fixed In the tracker's axes after the axis fix, as the library takes it: Rx · Ry · Rz and
///              a translation, where the reported x, y, z count as -x, -z, -y.
/// @return The same mounting, its three angles and its translation, in reported axes. The angle
///         about y is between -90 and 90 degrees.
Mounting ToReportedAxes(const Mounting& fixed);

/// The other way.
Mounting FromReportedAxes(const Mounting& reported);

}  // namespace trackedcam::host
