#include "host/input/mounting_axes.h"

#include <cmath>

#include <Eigen/Geometry>

#include "host/input/axis_fix.h"

namespace trackedcam::host {
namespace {

using Eigen::AngleAxisd;
using Eigen::Matrix3d;
using Eigen::Vector3d;

constexpr double kDegrees = 180 / EIGEN_PI;

Matrix3d RotationOf(const std::array<double, 3>& degrees) {
  return (AngleAxisd(degrees[0] / kDegrees, Vector3d::UnitX()) *
          AngleAxisd(degrees[1] / kDegrees, Vector3d::UnitY()) *
          AngleAxisd(degrees[2] / kDegrees, Vector3d::UnitZ()))
      .toRotationMatrix();
}

// rotation = Rx · Ry · Rz. The angle about z is taken from what the one about x leaves, so that it
// is right where that one is free.
std::array<double, 3> AnglesOf(const Matrix3d& rotation) {
  const double x = std::atan2(-rotation(1, 2), rotation(2, 2));
  const double c = std::cos(x);
  const double s = std::sin(x);
  const double y = std::atan2(rotation(0, 2), c * rotation(2, 2) - s * rotation(1, 2));
  const double z =
      std::atan2(c * rotation(1, 0) + s * rotation(2, 0), c * rotation(1, 1) + s * rotation(2, 1));
  return {x * kDegrees, y * kDegrees, z * kDegrees};
}

}  // namespace

// The fix is its own inverse, so one way is the other.
Mounting ToReportedAxes(const Mounting& fixed) {
  const Eigen::Map<const Vector3d> translation(fixed.translationMetres.data());
  const Vector3d reported = AxisFix() * translation;
  return {AnglesOf(AxisFix() * RotationOf(fixed.rotationDegrees)),
          {reported.x(), reported.y(), reported.z()}};
}

Mounting FromReportedAxes(const Mounting& reported) {
  return ToReportedAxes(reported);
}

}  // namespace trackedcam::host
