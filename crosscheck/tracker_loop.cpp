#include "crosscheck/tracker_loop.h"

#include "crosscheck/mounting.h"

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
