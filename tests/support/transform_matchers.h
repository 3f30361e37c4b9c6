// Matchers for transforms. NaN never matches.

#pragma once

#include <ostream>

#include <Eigen/Core>
#include <gmock/gmock.h>

namespace trackedcam::test {

/// The angle between two rotations, degrees.
double AngleBetweenDeg(const Eigen::Matrix3d& a, const Eigen::Matrix3d& b);

/// Whether the bottom row is 0, 0, 0, 1 and the block is a rotation to within 1e-4.
bool IsRigid(const Eigen::Matrix4d& transform);

/// Every element is within the tolerance; 0 demands equality.
MATCHER_P2(IsNear, expected, tolerance, "") {
  *result_listener << "expected\n" << expected;
  return arg.rows() == expected.rows() && arg.cols() == expected.cols() &&
         ((arg - expected).array().abs() <= tolerance).all();
}

/// A rigid transform with its translation within `metres` and its rotation within `degrees`.
MATCHER_P3(IsTransformNear, expected, metres, degrees, "") {
  const Eigen::Matrix4d actual = arg;
  const Eigen::Matrix4d wanted = expected;
  const double distance = (actual.topRightCorner<3, 1>() - wanted.topRightCorner<3, 1>()).norm();
  const double angle = AngleBetweenDeg(actual.topLeftCorner<3, 3>(), wanted.topLeftCorner<3, 3>());
  *result_listener << distance << " m and " << angle << " degree from\n" << wanted;
  return IsRigid(actual) && distance <= metres && angle <= degrees;
}

}  // namespace trackedcam::test
