// How engines compose a transform and the one above it, written out from their documentation, so
// that no test shares a formula with the code that it checks.

#pragma once

#include <cmath>
#include <vector>

#include <Eigen/Geometry>

namespace trackedcam::host::arithmetic {

using Eigen::Matrix3d;
using Eigen::Vector3d;

/// Where something is in the world of an engine, in its unit; columns: where its axes point.
struct Pose {
  Matrix3d axes;
  Vector3d position;
};

inline Pose Below(const Pose& parent, const Pose& relative) {
  return {parent.axes * relative.axes, parent.axes * relative.position + parent.position};
}

inline Vector3d VectorOf(const std::vector<double>& values) {
  return {values.at(0), values.at(1), values.at(2)};
}

inline double Radians(double degrees) {
  return degrees * 3.14159265358979323846 / 180;
}

/// Unreal's matrix of an FRotator: its rows, here the columns, are the turned axes.
inline Matrix3d FRotator(double roll, double pitch, double yaw) {
  const double sr = std::sin(Radians(roll)), cr = std::cos(Radians(roll));
  const double sp = std::sin(Radians(pitch)), cp = std::cos(Radians(pitch));
  const double sy = std::sin(Radians(yaw)), cy = std::cos(Radians(yaw));
  Matrix3d axes;
  axes.col(0) << cp * cy, cp * sy, sp;
  axes.col(1) << sr * sp * cy - cr * sy, sr * sp * sy + cr * cy, -sr * cp;
  axes.col(2) << -(cr * sp * cy + sr * sy), cy * sr - cr * sp * sy, cr * cp;
  return axes;
}

/// What FQuat::RotateVector and Unity's Quaternion * Vector3 do with each axis.
inline Matrix3d Quaternion(const std::vector<double>& xyzw) {
  const Vector3d q(xyzw.at(0), xyzw.at(1), xyzw.at(2));
  Matrix3d axes;
  for (int axis = 0; axis < 3; ++axis) {
    const Vector3d v = Vector3d::Unit(axis);
    const Vector3d t = 2 * q.cross(v);
    axes.col(axis) = v + xyzw.at(3) * t + q.cross(t);
  }
  return axes;
}

/// Unity's Quaternion.Euler: about Z first, then about X, then about Y, all of the parent. A
/// positive angle turns Y to Z, Z to X and X to Y.
inline Matrix3d UnityEuler(double x, double y, double z) {
  Matrix3d aboutX;
  aboutX << 1, 0, 0, 0, std::cos(Radians(x)), -std::sin(Radians(x)), 0, std::sin(Radians(x)),
      std::cos(Radians(x));
  Matrix3d aboutY;
  aboutY << std::cos(Radians(y)), 0, std::sin(Radians(y)), 0, 1, 0, -std::sin(Radians(y)), 0,
      std::cos(Radians(y));
  Matrix3d aboutZ;
  aboutZ << std::cos(Radians(z)), -std::sin(Radians(z)), 0, std::sin(Radians(z)),
      std::cos(Radians(z)), 0, 0, 0, 1;
  return aboutY * aboutX * aboutZ;
}

/// The angle between two sets of axes. Of small angles the sine is exact, the cosine is not.
inline double DegreesBetween(const Matrix3d& a, const Matrix3d& b) {
  const Matrix3d difference = a.transpose() * b;
  const Vector3d sine(difference(2, 1) - difference(1, 2), difference(0, 2) - difference(2, 0),
                      difference(1, 0) - difference(0, 1));
  return std::atan2(sine.norm() / 2, (difference.trace() - 1) / 2) * 180 / 3.14159265358979323846;
}

}  // namespace trackedcam::host::arithmetic
