#include "geometry/quaternion.h"

namespace trackedcam {

Quaternion QuaternionFromRotation(const Eigen::Matrix3d& rotation) {
  return Quaternion(rotation);
}

Eigen::Matrix3d RotationFromQuaternion(const Quaternion& quaternion) {
  return quaternion.toRotationMatrix();
}

Quaternion QuaternionFromAnglesXyz(const Eigen::Vector3d& angles) {
  using Eigen::AngleAxisd;
  using Eigen::Vector3d;
  return AngleAxisd(angles.x(), Vector3d::UnitX()) * AngleAxisd(angles.y(), Vector3d::UnitY()) *
         AngleAxisd(angles.z(), Vector3d::UnitZ());
}

}  // namespace trackedcam
