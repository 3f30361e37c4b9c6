#include "support/transform_matchers.h"

#include <cmath>

#include <Eigen/LU>

namespace trackedcam::test {

double AngleBetweenDeg(const Eigen::Matrix3d& a, const Eigen::Matrix3d& b) {
  constexpr double kDegreesPerRadian = 180.0 / 3.14159265358979323846;
  const Eigen::Matrix3d difference = a.transpose() * b;
  const Eigen::Vector3d twiceSine(difference(2, 1) - difference(1, 2),
                                  difference(0, 2) - difference(2, 0),
                                  difference(1, 0) - difference(0, 1));
  return std::atan2(twiceSine.norm(), difference.trace() - 1) * kDegreesPerRadian;
}

bool IsRigid(const Eigen::Matrix4d& transform) {
  const Eigen::Matrix3d rotation = transform.topLeftCorner<3, 3>();
  const Eigen::Matrix3d error = rotation.transpose() * rotation - Eigen::Matrix3d::Identity();
  return transform.row(3) == Eigen::RowVector4d(0, 0, 0, 1) &&
         (error.array().abs() <= 1e-4).all() && rotation.determinant() > 0;
}

}  // namespace trackedcam::test
