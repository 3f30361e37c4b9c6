#include "crosscheck/reported_poses.h"

#include <cmath>

#include "crosscheck/twist.h"

namespace trackedcam::crosscheck {
namespace {

constexpr double kFarthestMetres = 1e7;

Eigen::Vector3d Position(const Eigen::Vector3d& reported, Meaning meaning) {
  Eigen::Vector3d position = reported;
  switch (meaning) {
    case Meaning::kMillimetres:
      return position / 1000;
    case Meaning::kCentimetres:
      return position / 100;
    case Meaning::kMirroredX:
      position.x() *= -1;
      return position;
    case Meaning::kMirroredY:
      position.y() *= -1;
      return position;
    case Meaning::kMirroredZ:
    case Meaning::kLeftHanded:
      position.z() *= -1;
      return position;
    default:
      return position;
  }
}

Eigen::Quaterniond Rotation(const Eigen::Vector4d& wxyz, bool invert, Meaning meaning) {
  Eigen::Quaterniond rotation(wxyz[0], wxyz[1], wxyz[2], wxyz[3]);
  if (meaning == Meaning::kOrderXyzw) {
    rotation = Eigen::Quaterniond(wxyz[3], wxyz[0], wxyz[1], wxyz[2]);
  }
  if (meaning == Meaning::kLeftHanded) {
    // A turn seen in the mirror of z; which axis is mirrored makes no difference to the loop.
    rotation.x() *= -1;
    rotation.y() *= -1;
  }
  if (invert != (meaning == Meaning::kQuaternionsInverted)) {
    rotation = rotation.conjugate();
  }
  return rotation;
}

}  // namespace

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

std::optional<Pose> Transform_Base_Tracker(const TrackerPose& reported, bool invertQuaternion,
                                           Meaning meaning) {
  const Eigen::Quaterniond rotation = Rotation(reported.quaternionWxyz, invertQuaternion, meaning);
  const double length = rotation.norm();
  if (!(length > 1e-12 && length < 1e12) || !(reported.position.norm() < kFarthestMetres)) {
    return std::nullopt;
  }
  Pose pose = Pose::Identity();
  pose.linear() = rotation.normalized().toRotationMatrix() * AxisFix();
  pose.translation() = Position(reported.position, meaning);
  return pose;
}

std::optional<Pose> TransformOfRow(const Photograph& row, bool invertQuaternions, Meaning meaning) {
  const auto camera = Transform_Base_Tracker(row.camera, invertQuaternions, meaning);
  const auto chart = Transform_Base_Tracker(row.chart, invertQuaternions, meaning);
  if (!camera || !chart) {
    return std::nullopt;
  }
  const Pose Transform_Tc_Tr = camera->inverse() * *chart;
  return meaning == Meaning::kTrackersExchanged ? Transform_Tc_Tr.inverse() : Transform_Tc_Tr;
}

}  // namespace trackedcam::crosscheck
