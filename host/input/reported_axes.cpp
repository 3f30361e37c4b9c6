#include "host/input/reported_axes.h"

#include <array>
#include <cmath>
#include <tuple>

#include <Eigen/Geometry>

#include "host/input/data_file.h"
#include "host/input/input_error.h"
#include "host/text/text.h"

namespace trackedcam::host {
namespace {

using Eigen::AngleAxisd;
using Eigen::Matrix3d;
using Eigen::Vector3d;

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
      throw InputError("line " + std::to_string(row.line) + " of the tracker data has " +
                       (isThere ? '"' + std::string(fields[i]) + '"' : "nothing") +
                       " where field " + std::to_string(i + 1) +
                       " should be a number, so its poses cannot be converted");
    }
  }
}

// Three coordinates along the axes that the words name.
std::array<double, 3> Along(const char* words, const double* coordinates) {
  std::array<double, 3> along = {};
  for (double& coordinate : along) {
    const bool isOpposite = *words == '-';
    words += isOpposite ? 1 : 0;
    const double value = coordinates[*words - 'x'];
    coordinate = isOpposite ? 0 - value : value;
    words += 2;  // and the comma
  }
  return along;
}

// Where the axes change hands, a turn that is the same in the world turns the other way.
TrackerPose Converted(const TrackerPose& figures, const TrackerAxes& axes, double unitsPerMetre) {
  const auto position = Along(axes.reported, figures.data());
  auto turn = Along(axes.reported, figures.data() + 4);
  for (double& component : turn) {
    component = axes.isLeftHanded ? 0 - component : component;
  }
  return {position[0] / unitsPerMetre,
          position[1] / unitsPerMetre,
          position[2] / unitsPerMetre,
          figures[3],
          turn[0],
          turn[1],
          turn[2]};
}

const TrackerAxes& AxesOf(const TrackerFrame& frame) {
  return frame.axes == nullptr ? kTrackerAxes.front() : *frame.axes;
}

double UnitsPerMetre(const TrackerFrame& frame) {
  return frame.unit == nullptr ? AxesOf(frame).unitsPerMetre : frame.unit->unitsPerMetre;
}

constexpr double kDegrees = 180 / EIGEN_PI;

Matrix3d RotationOf(const std::array<double, 3>& degrees) {
  return (AngleAxisd(degrees[0] / kDegrees, Vector3d::UnitX()) *
          AngleAxisd(degrees[1] / kDegrees, Vector3d::UnitY()) *
          AngleAxisd(degrees[2] / kDegrees, Vector3d::UnitZ()))
      .toRotationMatrix();
}

// rotation = Rx · Ry · Rz. The angle about z is taken from what the one about x leaves, so that it
// is right where that one is free.
std::array<double, 3> AnglesOf(const Matrix3d& rotation) {
  const double x = std::atan2(-rotation(1, 2), rotation(2, 2));
  const double c = std::cos(x);
  const double s = std::sin(x);
  const double y = std::atan2(rotation(0, 2), c * rotation(2, 2) - s * rotation(1, 2));
  const double z =
      std::atan2(c * rotation(1, 0) + s * rotation(2, 0), c * rotation(1, 1) + s * rotation(2, 1));
  return {x * kDegrees, y * kDegrees, z * kDegrees};
}

}  // namespace

const std::vector<TrackerAxes> kTrackerAxes = {
    {"reported", "the tracking system's axes", "x,y,z", false, 1},
    {"unreal", "Unreal's axes", "-y,z,x", true, 100},
    {"unity", "Unity's axes", "-x,y,z", true, 1},
};

const std::vector<TrackerUnit> kTrackerUnits = {{"m", 1}, {"cm", 100}, {"mm", 1000}};

bool IsConverted(const TrackerFrame& frame) {
  return &AxesOf(frame) != &kTrackerAxes.front() || UnitsPerMetre(frame) != 1;
}

std::string Describe(const TrackerFrame& frame) {
  std::string unit;
  for (const TrackerUnit& known : kTrackerUnits) {
    unit = known.unitsPerMetre == UnitsPerMetre(frame) ? known.name : unit;
  }
  return std::string(AxesOf(frame).owner) + ", in " + unit;
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
    pose = Converted(pose, AxesOf(frame), UnitsPerMetre(frame));
    for (const double figure : pose) {
      converted[field++] = Shortest(figure);
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

// The fix is its own inverse, so one way is the other.
Mounting ToReportedAxes(const Mounting& fixed) {
  const Eigen::Map<const Vector3d> translation(fixed.translationMetres.data());
  const Vector3d reported = AxisFix() * translation;
  return {AnglesOf(AxisFix() * RotationOf(fixed.rotationDegrees)),
          {reported.x(), reported.y(), reported.z()}};
}

Mounting FromReportedAxes(const Mounting& reported) {
  return ToReportedAxes(reported);
}

}  // namespace trackedcam::host
