#include "simulator/mounting.h"

#include <cmath>

namespace trackedcam::simulator {

Eigen::Isometry3d Mounting::Transform() const {
  const Eigen::Vector3d angles = anglesDegrees * Radians(1);
  return Eigen::Translation3d(translationMetres) *
         Eigen::AngleAxisd(angles.x(), Eigen::Vector3d::UnitX()) *
         Eigen::AngleAxisd(angles.y(), Eigen::Vector3d::UnitY()) *
         Eigen::AngleAxisd(angles.z(), Eigen::Vector3d::UnitZ());
}

Mounting MountingOf(const Eigen::Isometry3d& Transform_Tr_Chart) {
  const Eigen::Matrix3d rotation = Transform_Tr_Chart.linear();
  const Eigen::Vector3d angles(std::atan2(-rotation(1, 2), rotation(2, 2)),
                               std::atan2(rotation(0, 2), rotation.block<1, 2>(0, 0).norm()),
                               std::atan2(-rotation(0, 1), rotation(0, 0)));
  return {angles * Degrees(1), Transform_Tr_Chart.translation()};
}

}  // namespace trackedcam::simulator
