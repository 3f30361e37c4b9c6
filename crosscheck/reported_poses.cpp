#include "crosscheck/reported_poses.h"

#include <cmath>

namespace trackedcam::crosscheck {
namespace {

constexpr double kFarthestMetres = 1e7;

Eigen::Vector3d Position(const Eigen::Vector3d& reported, std::optional<RowReading> reading) {
  Eigen::Vector3d position = reported;
  if (!reading) {
    return position;
  }
  switch (*reading) {
    case RowReading::kMillimetres:
      return position / 1000;
    case RowReading::kCentimetres:
      return position / 100;
    case RowReading::kInches:
      return position * 0.0254;
    case RowReading::kEngineCentimetres:
      position.z() *= -1;
      return position / 100;
    case RowReading::kMirroredX:
      position.x() *= -1;
      return position;
    case RowReading::kMirroredY:
      position.y() *= -1;
      return position;
    case RowReading::kMirroredZ:
    case RowReading::kLeftHanded:
      position.z() *= -1;
      return position;
    default:
      return position;
  }
}

// The quaternion of which the row has x, y, z, w, but which was read as w, x, y, z.
Eigen::Quaterniond InOrderXyzw(const Eigen::Vector4d& wxyz, const Eigen::Matrix3d& axes) {
  const Eigen::Vector3d others = axes.inverse() * wxyz.tail<3>();  // as in the row
  const Eigen::Vector3d vector = axes * Eigen::Vector3d(wxyz[0], others[0], others[1]);
  return {others[2], vector[0], vector[1], vector[2]};
}

Eigen::Quaterniond Rotation(const Eigen::Vector4d& wxyz, const RowForm& form,
                            std::optional<RowReading> reading) {
  Eigen::Quaterniond rotation(wxyz[0], wxyz[1], wxyz[2], wxyz[3]);
  if (reading == RowReading::kOrderXyzw) {
    rotation = InOrderXyzw(wxyz, form.quaternionAxes);
  }
  if (reading == RowReading::kLeftHanded || reading == RowReading::kEngineCentimetres) {
    // The rotation in a mirror across z; for the loop it does not matter which axis is mirrored.
    rotation.x() *= -1;
    rotation.y() *= -1;
  }
  if (form.invertQuaternions != (reading == RowReading::kQuaternionsInverted)) {
    rotation = rotation.conjugate();
  }
  return rotation;
}

}  // namespace

Eigen::Matrix3d AxisFix() {
  Eigen::Matrix3d fix;
  fix << -1, 0, 0, 0, 0, -1, 0, -1, 0;
  return fix;
}

Pose TransformOf(const Mounting& mounting) {
  Pose pose = Pose::Identity();
  pose.linear() = RotationAbout(0, mounting.rotationDegrees[0]) *
                  RotationAbout(1, mounting.rotationDegrees[1]) *
                  RotationAbout(2, mounting.rotationDegrees[2]);
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
    angles.x() = std::atan2(r(2, 1), r(1, 1));  // only the sum or difference of x and z is known
  }
  Mounting mounting;
  for (int i = 0; i < 3; ++i) {
    mounting.rotationDegrees[static_cast<std::size_t>(i)] = angles[i] / kDegree;
    mounting.translationMetres[static_cast<std::size_t>(i)] = Transform_Tr_Chart.translation()[i];
  }
  return mounting;
}

RowForm FormOf(const Observations& observations) {
  return {observations.invertTrackerQuaternions, observations.quaternionAxes};
}

std::optional<Pose> Transform_Base_Tracker(const TrackerPose& reported, const RowForm& form,
                                           std::optional<RowReading> reading) {
  const Eigen::Quaterniond rotation = Rotation(reported.quaternionWxyz, form, reading);
  const double length = rotation.norm();
  if (!(length > 1e-12 && length < 1e12) || !(reported.position.norm() < kFarthestMetres)) {
    return std::nullopt;
  }
  Pose pose = Pose::Identity();
  pose.linear() = rotation.normalized().toRotationMatrix() * AxisFix();
  pose.translation() = Position(reported.position, reading);
  return pose;
}

std::optional<Pose> TransformOfRows(const TrackerPose& cameraRow, const TrackerPose& chartRow,
                                    const RowForm& form, std::optional<RowReading> reading) {
  const auto ofOne = [&](RowReading one) {
    return reading == one ? std::optional(RowReading::kQuaternionsInverted) : reading;
  };
  const auto camera = Transform_Base_Tracker(cameraRow, form, ofOne(RowReading::kCameraInverted));
  const auto chart = Transform_Base_Tracker(chartRow, form, ofOne(RowReading::kChartInverted));
  if (!camera || !chart) {
    return std::nullopt;
  }
  const Pose Transform_Tc_Tr = camera->inverse() * *chart;
  return reading == RowReading::kTrackersExchanged ? Transform_Tc_Tr.inverse() : Transform_Tc_Tr;
}

std::optional<Pose> TransformOfRow(const Photograph& row, const RowForm& form) {
  return TransformOfRows(row.camera, row.chart, form);
}

}  // namespace trackedcam::crosscheck
