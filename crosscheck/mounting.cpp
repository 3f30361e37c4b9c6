#include "crosscheck/mounting.h"

#include <cmath>

#include "crosscheck/angle.h"

namespace trackedcam::crosscheck {

Eigen::Matrix3d TurnAbout(int axis, double degrees) {
  return Eigen::AngleAxisd(degrees * kDegree, Eigen::Vector3d::Unit(axis)).toRotationMatrix();
}

Eigen::Matrix3d AxisFix() {
  Eigen::Matrix3d fix;
  fix << -1, 0, 0, 0, 0, -1, 0, -1, 0;
  return fix;
}

Pose TransformOf(const Mounting& mounting) {
  Pose pose = Pose::Identity();
  pose.linear() = TurnAbout(0, mounting.rotationDegrees[0]) *
                  TurnAbout(1, mounting.rotationDegrees[1]) *
                  TurnAbout(2, mounting.rotationDegrees[2]);
  pose.translation() = Eigen::Vector3d::Map(mounting.translationMetres.data());
  return pose;
}

// Rx · Ry · Rz has sin(y) at (0, 2), -sin(x) cos(y) at (1, 2) and -cos(y) sin(z) at (0, 1).
Mounting MountingOf(const Pose& Transform_Tr_Chart) {
  const Eigen::Matrix3d r = Transform_Tr_Chart.linear();
  const double cosine = std::hypot(r(0, 0), r(0, 1));
  Eigen::Vector3d angles(0, std::atan2(r(0, 2), cosine), 0);
  if (cosine > 1e-9) {
    angles.x() = std::atan2(-r(1, 2), r(2, 2));
    angles.z() = std::atan2(-r(0, 1), r(0, 0));
  } else {
    angles.x() = std::atan2(r(2, 1), r(1, 1));  // only the sum or difference of x and z shows
  }
  Mounting mounting;
  for (int i = 0; i < 3; ++i) {
    mounting.rotationDegrees[static_cast<std::size_t>(i)] = angles[i] / kDegree;
    mounting.translationMetres[static_cast<std::size_t>(i)] = Transform_Tr_Chart.translation()[i];
  }
  return mounting;
}

}  // namespace trackedcam::crosscheck
