// The axes in which the library counts at a tracker.

#pragma once

#include <Eigen/Core>

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

}  // namespace trackedcam::host
