#include "host/input/reported_axes.h"

#include <algorithm>
#include <array>

#include "crosscheck/reported_poses.h"
#include "host/input/data_file.h"
#include "host/input/input_error.h"
#include "host/text/text.h"

namespace trackedcam::host {
namespace {

std::string Join(const std::vector<std::string>& fields) {
  std::string text = fields.front();
  for (std::size_t i = 1; i < fields.size(); ++i) {
    text += ',' + fields[i];
  }
  return text;
}

void RequireNumbers(const DataRow& row, const std::vector<std::string_view>& fields) {
  for (std::size_t i = kFirstPoseField; i < kFields; ++i) {
    const bool isThere = i < fields.size() && KindOf(fields[i]) != FieldKind::kEmpty;
    if (!isThere || KindOf(fields[i]) == FieldKind::kText) {
      const std::string where =
          "row " + std::to_string(row.line) + ", field " + std::to_string(i + 1) + ": ";
      throw InputError(where +
                       (isThere ? '"' + std::string(fields[i]) + "\" is not a number"
                                : "the number is missing") +
                       ", so the poses cannot be converted");
    }
  }
}

// Three coordinates along the axes of a list such as "-y,z,x".
std::array<double, 3> Along(const char* axes, const double* coordinates) {
  std::array<double, 3> along = {};
  for (double& coordinate : along) {
    const bool isOpposite = *axes == '-';
    axes += isOpposite ? 1 : 0;
    const double value = coordinates[*axes - 'x'];
    coordinate = isOpposite ? 0 - value : value;
    axes += 2;  // and the comma
  }
  return along;
}

// Between right-handed and left-handed axes, the same rotation changes its sign.
TrackerPose Converted(const TrackerPose& pose, const TrackerAxes& axes, double unitsPerMetre) {
  const auto position = Along(axes.reported, pose.data());
  auto rotation = Along(axes.reported, pose.data() + 4);
  for (double& component : rotation) {
    component = axes.isLeftHanded ? 0 - component : component;
  }
  return {position[0] / unitsPerMetre,
          position[1] / unitsPerMetre,
          position[2] / unitsPerMetre,
          pose[3],
          rotation[0],
          rotation[1],
          rotation[2]};
}

}  // namespace

const std::vector<TrackerAxes> kTrackerAxes = {
    {"reported", "the tracking system's axes", "x,y,z", false, 1},
    {"unreal", "Unreal's axes", "-y,z,x", true, 100},
    {"unity", "Unity's axes", "-x,y,z", true, 1},
};

const std::vector<TrackerUnit> kTrackerUnits = {
    {"m", 1}, {"cm", 100}, {"mm", 1000}, {"in", 1 / 0.0254}};

const TrackerAxes& AxesOf(const TrackerFrame& frame) {
  return frame.axes == nullptr ? kTrackerAxes.front() : *frame.axes;
}

const TrackerUnit& UnitOf(const TrackerFrame& frame) {
  if (frame.unit != nullptr) {
    return *frame.unit;
  }
  return *std::find_if(kTrackerUnits.begin(), kTrackerUnits.end(), [&](const TrackerUnit& unit) {
    return unit.unitsPerMetre == AxesOf(frame).unitsPerMetre;
  });
}

bool IsConverted(const TrackerFrame& frame) {
  return &AxesOf(frame) != &kTrackerAxes.front() || UnitOf(frame).unitsPerMetre != 1 ||
         frame.hasQuaternionsXyzw;
}

std::string Describe(const TrackerFrame& frame) {
  return std::string(AxesOf(frame).owner) + ", in " + std::string(UnitOf(frame).name) +
         (frame.hasQuaternionsXyzw ? ", quaternions x, y, z, w" : "");
}

Eigen::Matrix3d QuaternionAxes(const TrackerFrame& frame) {
  const double sign = AxesOf(frame).isLeftHanded ? -1 : 1;
  Eigen::Matrix3d axes;
  for (Eigen::Index i = 0; i < 3; ++i) {
    const Eigen::Vector3d inFile = Eigen::Vector3d::Unit(i);
    const auto reported = Along(AxesOf(frame).reported, inFile.data());
    axes.col(i) = sign * Eigen::Vector3d::Map(reported.data());
  }
  return axes;
}

DataRow InReportedAxes(const DataRow& row, const TrackerFrame& frame) {
  if (!IsConverted(frame) || row.photograph.empty() || !FormOf(row).IsPlain()) {
    return row;
  }
  const std::vector<std::string_view> fields = SplitFields(row.text);
  RequireNumbers(row, fields);
  std::vector<std::string> converted(fields.begin(), fields.end());
  std::size_t field = kFirstPoseField;
  for (TrackerPose pose : PosesIn(fields)) {
    if (frame.hasQuaternionsXyzw) {
      std::rotate(pose.begin() + 3, pose.begin() + 6, pose.end());
    }
    pose = Converted(pose, AxesOf(frame), UnitOf(frame).unitsPerMetre);
    for (const double number : pose) {
      converted[field++] = Shortest(number);
    }
  }
  return {row.line, Join(converted), row.photograph};
}

std::vector<DataRow> InReportedAxes(const std::vector<DataRow>& rows, const TrackerFrame& frame) {
  std::vector<DataRow> converted;
  converted.reserve(rows.size());
  for (const DataRow& row : rows) {
    converted.push_back(InReportedAxes(row, frame));
  }
  return converted;
}

Mounting ToReportedAxes(const Mounting& fixed) {
  const crosscheck::Pose axisFix(crosscheck::AxisFix());
  return crosscheck::MountingOf(axisFix * crosscheck::TransformOf(fixed));
}

Mounting FromReportedAxes(const Mounting& reported) {
  return ToReportedAxes(reported);  // the axis fix is its own inverse
}

}  // namespace trackedcam::host
