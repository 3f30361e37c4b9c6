#include "host/input/data_fields.h"

#include <cmath>
#include <optional>

#include "host/text/number_text.h"

namespace trackedcam::host {
namespace {

std::string_view Trim(std::string_view text) {
  constexpr const char* kBlanks = " \t\r\v\f";
  const std::size_t begin = text.find_first_not_of(kBlanks);
  if (begin == std::string_view::npos) {
    return {};
  }
  return text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}

std::optional<double> Parse(std::string_view trimmed) {
  const bool hasPlus = trimmed.size() > 1 && trimmed[0] == '+' && trimmed[1] != '-';
  return ParseNumber(hasPlus ? trimmed.substr(1) : trimmed);
}

}  // namespace

std::vector<std::string_view> SplitFields(std::string_view row, char separator) {
  std::vector<std::string_view> fields;
  fields.reserve(kFields);
  for (;;) {
    const std::size_t end = row.find(separator);
    fields.push_back(row.substr(0, end));
    if (end == std::string_view::npos) {
      return fields;
    }
    row.remove_prefix(end + 1);
  }
}

FieldKind KindOf(std::string_view field) {
  const std::string_view text = Trim(field);
  if (text.empty()) {
    return FieldKind::kEmpty;
  }
  const auto number = Parse(text);
  if (!number) {
    return FieldKind::kText;
  }
  return std::isfinite(*number) ? FieldKind::kNumber : FieldKind::kNotFinite;
}

double NumberIn(std::string_view field) {
  return Parse(Trim(field)).value_or(0);
}

std::array<TrackerPose, 2> PosesIn(const std::vector<std::string_view>& fields) {
  std::array<TrackerPose, 2> poses = {};
  std::size_t field = kFirstPoseField;
  for (TrackerPose& pose : poses) {
    for (double& number : pose) {
      number = field < fields.size() ? NumberIn(fields[field]) : 0;
      ++field;
    }
  }
  return poses;
}

}  // namespace trackedcam::host
