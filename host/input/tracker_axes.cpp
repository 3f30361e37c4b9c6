#include "host/input/tracker_axes.h"

#include <array>
#include <cmath>

#include "host/input/input_error.h"
#include "host/text/number_text.h"

namespace trackedcam::host {
namespace {

constexpr std::size_t kFirstFigure = 2;  // after time and photograph
constexpr std::size_t kFiguresPerPose = 7;
constexpr std::size_t kPoses = 2;

using Figures = std::array<double, kFiguresPerPose>;  // x, y, z and w, x, y, z

std::vector<std::string> Split(const std::string& text) {
  std::vector<std::string> fields;
  for (std::size_t begin = 0; begin != std::string::npos;) {
    const std::size_t comma = text.find(',', begin);
    fields.push_back(text.substr(begin, comma - begin));  // as many as are left, at the end
    begin = comma == std::string::npos ? comma : comma + 1;
  }
  return fields;
}

std::string Join(const std::vector<std::string>& fields) {
  std::string text = fields.front();
  for (std::size_t i = 1; i < fields.size(); ++i) {
    text += ',' + fields[i];
  }
  return text;
}

std::string Trim(const std::string& field) {
  const char* const blanks = " \t";
  const std::size_t begin = field.find_first_not_of(blanks);
  return begin == std::string::npos
             ? ""
             : field.substr(begin, field.find_last_not_of(blanks) - begin + 1);
}

double NumberIn(const DataRow& row, const std::vector<std::string>& fields, std::size_t index) {
  std::string text = index < fields.size() ? Trim(fields[index]) : "";
  text.erase(0, text.rfind('+', 0) == 0 ? 1 : 0);
  const auto number = ParseNumber(text);
  if (!number) {
    throw InputError("line " + std::to_string(row.line) + " of the tracker data has " +
                     (index < fields.size() ? "\"" + text + "\"" : "nothing") + " where field " +
                     std::to_string(index + 1) +
                     " should be a number, so its poses cannot be taken out of the engine's axes");
  }
  return *number;
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

// The axes change hands, so that a turn that is the same in the world turns the other way.
Figures Converted(const Figures& figures, const char* reported, double unitsPerMetre) {
  const auto position = Along(reported, figures.data());
  const auto turn = Along(reported, figures.data() + 4);
  return {position[0] / unitsPerMetre,
          position[1] / unitsPerMetre,
          position[2] / unitsPerMetre,
          figures[3],
          0 - turn[0],
          0 - turn[1],
          0 - turn[2]};
}

bool IsReported(const TrackerFrame& frame) {
  return frame.axes == nullptr || frame.axes == &kTrackerAxes.front();
}

double UnitsPerMetre(const TrackerFrame& frame) {
  if (frame.unit != nullptr) {
    return frame.unit->unitsPerMetre;
  }
  return IsReported(frame) ? 1 : frame.axes->unitsPerMetre;
}

}  // namespace

const std::vector<TrackerAxes> kTrackerAxes = {
    {"reported", "the tracking system's axes", "x,y,z", 1},
    {"unreal", "Unreal's axes", "-y,z,x", 100},
    {"unity", "Unity's axes", "-x,y,z", 1},
};

const std::vector<TrackerUnit> kTrackerUnits = {{"m", 1}, {"cm", 100}, {"mm", 1000}};

bool IsConverted(const TrackerFrame& frame) {
  return !IsReported(frame) || UnitsPerMetre(frame) != 1;
}

std::string Describe(const TrackerFrame& frame) {
  std::string unit;
  for (const TrackerUnit& known : kTrackerUnits) {
    unit = known.unitsPerMetre == UnitsPerMetre(frame) ? known.name : unit;
  }
  return std::string((IsReported(frame) ? &kTrackerAxes.front() : frame.axes)->owner) + ", in " +
         unit;
}

DataRow InReportedAxes(const DataRow& row, const TrackerFrame& frame) {
  if (!IsConverted(frame) || row.photograph.empty()) {
    return row;
  }
  std::vector<std::string> fields = Split(row.text);
  for (std::size_t pose = 0; pose < kPoses; ++pose) {
    const std::size_t first = kFirstFigure + pose * kFiguresPerPose;
    Figures figures = {};
    for (std::size_t i = 0; i < kFiguresPerPose; ++i) {
      figures[i] = NumberIn(row, fields, first + i);
    }
    if (IsReported(frame)) {
      for (std::size_t i = 0; i < 3; ++i) {
        figures[i] /= UnitsPerMetre(frame);
      }
    } else {
      figures = Converted(figures, frame.axes->reported, UnitsPerMetre(frame));
    }
    for (std::size_t i = 0; i < kFiguresPerPose; ++i) {
      fields[first + i] = Shortest(figures[i]);
    }
  }
  return {row.line, Join(fields), row.photograph};
}

std::vector<DataRow> InReportedAxes(const std::vector<DataRow>& rows, const TrackerFrame& frame) {
  std::vector<DataRow> converted;
  converted.reserve(rows.size());
  for (const DataRow& row : rows) {
    converted.push_back(InReportedAxes(row, frame));
  }
  return converted;
}

}  // namespace trackedcam::host
