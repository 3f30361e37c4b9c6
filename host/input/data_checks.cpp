#include "host/input/data_checks.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "crosscheck/twist.h"
#include "host/findings/finding_text.h"
#include "host/input/data_file.h"
#include "host/input/inputs.h"
#include "host/text/text.h"

namespace trackedcam::host {
namespace {

constexpr double kLengthTolerance = 0.02;  // of a quaternion; two decimals leave 0.01
constexpr double kFarthestMetres = 30;     // of chart and camera from each other on any set
constexpr double kMoveMetres = 1e-3;
constexpr double kMoveDegrees = 0.1;

double Norm(double a, double b, double c, double d = 0) {
  return std::hypot(std::hypot(a, b), std::hypot(c, d));
}

double QuaternionNorm(const TrackerPose& pose) {
  return Norm(pose[3], pose[4], pose[5], pose[6]);
}

bool IsAtOrigin(const TrackerPose& pose) {
  return pose[0] == 0 && pose[1] == 0 && pose[2] == 0;
}

double Metres(const TrackerPose& a, const TrackerPose& b) {
  return Norm(a[0] - b[0], a[1] - b[1], a[2] - b[2]);
}

double Degrees(const TrackerPose& a, const TrackerPose& b) {
  double product = 0;
  for (std::size_t i = 3; i < a.size(); ++i) {
    product += a[i] * b[i];
  }
  const double cosine = std::abs(product) / (QuaternionNorm(a) * QuaternionNorm(b));
  return 2 * std::acos(std::min(cosine, 1.0)) / crosscheck::kDegree;
}

bool Moves(const TrackerPose& a, const TrackerPose& b) {
  return Metres(a, b) > kMoveMetres || Degrees(a, b) > kMoveDegrees;
}

// The rows that have one fault.
struct Faulty {
  std::vector<std::size_t> lines;
  std::vector<std::string> photographs;  // the first of them

  void Add(const DataRow& row) {
    if (!lines.empty() && lines.back() == row.line) {
      return;
    }
    lines.push_back(row.line);
    if (!row.photograph.empty() && photographs.size() < kMostNamedPhotographs) {
      photographs.push_back(row.photograph);
    }
  }
};

/// A row in which every value of the poses is a number.
struct PoseRow {
  const DataRow* row = nullptr;
  std::array<TrackerPose, 2> poses = {};  // of the camera's tracker and of the chart's
};

struct Found {
  std::vector<Finding> findings;
  std::set<std::size_t> leaveOut;  // lines
};

// Adds a finding if any row has the fault. Its severity follows from the number of rows, unless
// stated.
template <class Kind>
void Add(std::vector<Finding>& findings, Kind kind, const Faulty& faulty, std::size_t all,
         std::optional<Severity> severity = std::nullopt) {
  if (!faulty.lines.empty()) {
    kind.rows = {faulty.lines, all};
    findings.push_back({severity.value_or(SeverityOf(faulty.lines.size(), all)), std::move(kind),
                        faulty.photographs});
  }
}

// The same for rows without a pose of a tracker, which are left out.
template <class Kind>
void AddLeftOut(Found& found, Kind kind, const Faulty& faulty, std::size_t all) {
  found.leaveOut.insert(faulty.lines.begin(), faulty.lines.end());
  Add(found.findings, std::move(kind), faulty, all, SeverityOfLeftOut(faulty.lines.size(), all));
}

template <class Has>
Faulty RowsThat(const std::vector<PoseRow>& rows, Has has) {
  Faulty faulty;
  for (const PoseRow& row : rows) {
    if (has(row)) {
      faulty.Add(*row.row);
    }
  }
  return faulty;
}

bool IsZeroQuaternion(const TrackerPose& pose) {
  return QuaternionNorm(pose) == 0;
}

// Nothing but zeros; some systems report no rotation, at the origin.
bool IsLost(const TrackerPose& pose) {
  return IsAtOrigin(pose) && (IsZeroQuaternion(pose) || std::abs(pose[3]) == 1);
}

// Returns the rows in which both trackers have a pose.
std::vector<PoseRow> CheckTracking(const std::vector<PoseRow>& rows, Found& found) {
  // A tracker that is the origin of the tracking system is there in every row.
  std::array<bool, 2> isOrigin = {};
  for (std::size_t tracker = 0; tracker < 2; ++tracker) {
    isOrigin[tracker] = std::all_of(rows.begin(), rows.end(), [&](const PoseRow& row) {
      return IsAtOrigin(row.poses[tracker]) && !IsZeroQuaternion(row.poses[tracker]);
    });
  }
  const auto isLost = [&](const PoseRow& row) {
    return (!isOrigin[0] && IsLost(row.poses[0])) || (!isOrigin[1] && IsLost(row.poses[1]));
  };
  const auto isZeroOnly = [&](const PoseRow& row) {
    return !isLost(row) && (IsZeroQuaternion(row.poses[0]) || IsZeroQuaternion(row.poses[1]));
  };
  AddLeftOut(found, RowFault{RowFault::Kind::kLostTracking, {}}, RowsThat(rows, isLost),
             rows.size());
  AddLeftOut(found, RowFault{RowFault::Kind::kZeroQuaternion, {}}, RowsThat(rows, isZeroOnly),
             rows.size());
  std::vector<PoseRow> tracked;
  std::copy_if(rows.begin(), rows.end(), std::back_inserter(tracked),
               [&](const PoseRow& row) { return !isLost(row) && !isZeroOnly(row); });
  return tracked;
}

bool HasOddLength(const TrackerPose& pose) {
  return !IsZeroQuaternion(pose) && std::abs(QuaternionNorm(pose) - 1) > kLengthTolerance;
}

void CheckQuaternionLength(const std::vector<PoseRow>& rows, std::vector<Finding>& findings) {
  const auto isOdd = [](const PoseRow& row) {
    return HasOddLength(row.poses[0]) || HasOddLength(row.poses[1]);
  };
  const auto first = std::find_if(rows.begin(), rows.end(), isOdd);
  if (first == rows.end()) {
    return;
  }
  const TrackerPose& pose = first->poses[HasOddLength(first->poses[0]) ? 0 : 1];
  Add(findings, QuaternionLength{{}, QuaternionNorm(pose)}, RowsThat(rows, isOdd), rows.size(),
      Severity::kWarning);  // scaled quaternions do no harm
}

void CheckLengthUnit(const std::vector<PoseRow>& rows, std::vector<Finding>& findings) {
  std::vector<double> distances;
  distances.reserve(rows.size());
  for (const PoseRow& row : rows) {
    distances.push_back(Metres(row.poses[0], row.poses[1]));
  }
  if (distances.empty()) {
    return;
  }
  const auto middle = distances.begin() + static_cast<std::ptrdiff_t>(distances.size() / 2);
  std::nth_element(distances.begin(), middle, distances.end());
  if (*middle > kFarthestMetres) {
    findings.push_back({Severity::kError, LengthUnit{*middle}, {}});
  }
}

void CheckFrozen(const std::vector<PoseRow>& rows, std::size_t tracker, Found& found) {
  Faulty frozen;
  std::size_t moves = 0;
  for (std::size_t i = 1; i < rows.size(); ++i) {
    const auto& before = rows[i - 1].poses;
    const auto& now = rows[i].poses;
    if (Moves(before[1 - tracker], now[1 - tracker])) {
      ++moves;
      if (before[tracker] == now[tracker]) {
        frozen.Add(*rows[i].row);
      }
    }
  }
  if (frozen.lines.size() == moves) {  // it is on a tripod
    return;
  }
  FrozenPose kind;
  kind.tracker = tracker == 0 ? crosscheck::Tracker::kCamera : crosscheck::Tracker::kChart;
  kind.isLeftOut = SeverityOf(frozen.lines.size(), moves) != Severity::kError;
  if (kind.isLeftOut) {
    AddLeftOut(found, kind, frozen, rows.size());
  } else {
    const bool isMostlyAtRest = 2 * frozen.lines.size() > moves;
    Add(found.findings, kind, frozen, rows.size(),
        isMostlyAtRest ? Severity::kNote : Severity::kWarning);
  }
}

void CheckRepeatedPoses(const std::vector<PoseRow>& rows, std::vector<Finding>& findings) {
  std::unordered_map<std::string, const PoseRow*> seen;
  Faulty repeated;
  for (const PoseRow& row : rows) {
    std::string key(sizeof row.poses, '\0');
    std::memcpy(key.data(), row.poses.data(), sizeof row.poses);
    const auto [first, isNew] = seen.emplace(key, &row);
    if (!isNew && first->second->row->photograph != row.row->photograph) {
      repeated.Add(*row.row);
    }
  }
  const bool isMany = SeverityOf(repeated.lines.size(), rows.size()) == Severity::kError;
  Add(findings, RowFault{RowFault::Kind::kRepeatedPoses, {}}, repeated, rows.size(),
      isMany ? Severity::kWarning : Severity::kNote);
}

// A wrong length unit, frozen or repeated poses, and rows without a pose.
void CheckPoses(const std::vector<PoseRow>& rows, Found& found) {
  const std::vector<PoseRow> tracked = CheckTracking(rows, found);
  CheckQuaternionLength(rows, found.findings);
  CheckLengthUnit(tracked, found.findings);
  CheckFrozen(tracked, 0, found);
  CheckFrozen(tracked, 1, found);
  CheckRepeatedPoses(tracked, found.findings);
}

bool IsUtf16(std::string_view content) {
  const std::string_view begin = content.substr(0, 4096);
  const auto zeros = static_cast<std::size_t>(std::count(begin.begin(), begin.end(), '\0'));
  return begin.size() >= 4 && zeros * 4 >= begin.size();
}

template <class Has>
Faulty LinesThat(const std::string& content, Has has) {
  Faulty faulty;
  std::size_t number = 0;
  for (const std::string_view line : SplitFields(content, '\n')) {
    ++number;
    if (has(line)) {
      faulty.Add({number, "", ""});
    }
  }
  return faulty;
}

// The time is only echoed, so it may be anything.
bool HasMissingFields(const std::vector<std::string_view>& fields) {
  const auto isEmpty = [](std::string_view field) { return KindOf(field) == FieldKind::kEmpty; };
  return fields.size() < kFields ||
         std::any_of(fields.begin() + kPathField, fields.begin() + kFields, isEmpty);
}

// For metres, millimetres, or a part of a quaternion.
bool IsTooLarge(double number) {
  constexpr double kLargest = 1e9;
  return number > kLargest || number < -kLargest;
}

std::optional<ValueFault::Kind> FaultOf(std::string_view field) {
  switch (KindOf(field)) {
    case FieldKind::kNotFinite:
      return ValueFault::Kind::kNotFinite;
    case FieldKind::kText:
      return ValueFault::Kind::kText;
    case FieldKind::kEmpty:
    case FieldKind::kNumber:
      break;
  }
  return IsTooLarge(NumberIn(field)) ? std::optional(ValueFault::Kind::kTooLarge) : std::nullopt;
}

/// Sorts rows by their faults; one row may have several.
class RowSorter {
 public:
  explicit RowSorter(const std::vector<DataRow>& rows) {
    for (const DataRow& row : rows) {
      Sort(row);
    }
  }

  Found FoundIn(const std::string& content) const {
    using Kind = RowFault::Kind;
    Found found;
    std::vector<Finding>& findings = found.findings;
    AddFaults({Kind::kSemicolons, Kind::kTabs, Kind::kBars, Kind::kDecimalCommas, Kind::kQuotes,
               Kind::kExtraColumn, Kind::kPathFirst},
              all_, findings);
    // Lines that are skipped are not among the rows.
    const Faulty skipped = LinesThat(content, IsSkippedRow);
    Add(findings, RowFault{Kind::kTimeWithT, {}}, skipped, all_ + skipped.lines.size());
    if (faults_.count(Kind::kPathNotUtf8) == 0 && !IsUtf8(content)) {
      Add(findings, RowFault{Kind::kNotUtf8, {}},
          LinesThat(content, [](std::string_view line) { return !IsUtf8(line); }), 0,
          Severity::kNote);
    }
    AddFaults({Kind::kPathNotUtf8}, all_, findings);
    for (const auto& [kind, values] : values_) {
      AddLeftOut(found, values.first, values.rows, all_);
    }
    if (const auto missing = faults_.find(Kind::kMissingFields); missing != faults_.end()) {
      AddLeftOut(found, RowFault{Kind::kMissingFields, {}}, missing->second, all_);
    }
    CheckPoses(poses_, found);
    const std::size_t different = photographs_.size();
    const bool areTooFew = different < kLeastPhotographs && all_ >= kLeastPhotographs;
    Add(findings, RepeatedRows{{}, different}, repeated_, all_,
        areTooFew ? Severity::kError : Severity::kWarning);
    AddFaults({Kind::kBlankLine, Kind::kHeader}, 0, findings, Severity::kNote);
    return found;
  }

 private:
  struct FaultyValues {
    ValueFault first;
    Faulty rows;
  };

  void Sort(const DataRow& row) {
    const RowForm form = FormOf(row);
    if (form.isBlank || form.isHeader) {
      faults_[form.isBlank ? RowFault::Kind::kBlankLine : RowFault::Kind::kHeader].Add(row);
      return;
    }
    ++all_;
    SortByForm(row, form);
    if (!form.IsPlain()) {
      return;
    }
    AddIf(!IsUtf8(row.photograph), RowFault::Kind::kPathNotUtf8, row);
    if (!row.photograph.empty() && !photographs_.insert(row.photograph).second) {
      repeated_.Add(row);
    }
    SortByFields(row);
  }

  void SortByForm(const DataRow& row, const RowForm& form) {
    AddIf(form.separator == ';', RowFault::Kind::kSemicolons, row);
    AddIf(form.separator == '\t', RowFault::Kind::kTabs, row);
    AddIf(form.separator == '|', RowFault::Kind::kBars, row);
    AddIf(form.hasQuotes, RowFault::Kind::kQuotes, row);
    AddIf(form.hasDecimalCommas, RowFault::Kind::kDecimalCommas, row);
    AddIf(form.hasExtraColumn, RowFault::Kind::kExtraColumn, row);
    AddIf(form.hasPathFirst, RowFault::Kind::kPathFirst, row);
  }

  void SortByFields(const DataRow& row) {
    const auto fields = SplitFields(row.text);
    const bool isIncomplete = HasMissingFields(fields);
    AddIf(isIncomplete, RowFault::Kind::kMissingFields, row);
    bool hasPoses = !isIncomplete;
    for (std::size_t i = kFirstPoseField; i < std::min(kFields, fields.size()); ++i) {
      if (const auto kind = FaultOf(fields[i])) {
        hasPoses = false;
        FaultyValues& values = values_[*kind];
        if (values.rows.lines.empty()) {
          values.first.kind = *kind;
          values.first.field = i + 1;
          values.first.photograph = row.photograph;
        }
        values.rows.Add(row);
      }
    }
    if (hasPoses) {
      poses_.push_back({&row, PosesIn(fields)});
    }
  }

  void AddIf(bool has, RowFault::Kind kind, const DataRow& row) {
    if (has) {
      faults_[kind].Add(row);
    }
  }

  void AddFaults(const std::vector<RowFault::Kind>& kinds, std::size_t all,
                 std::vector<Finding>& findings,
                 std::optional<Severity> severity = std::nullopt) const {
    for (const RowFault::Kind kind : kinds) {
      if (const auto found = faults_.find(kind); found != faults_.end()) {
        Add(findings, RowFault{kind, {}}, found->second, all, severity);
      }
    }
  }

  std::map<RowFault::Kind, Faulty> faults_;
  std::map<ValueFault::Kind, FaultyValues> values_;
  Faulty repeated_;
  std::unordered_set<std::string_view> photographs_;
  std::vector<PoseRow> poses_;
  std::size_t all_ = 0;  // rows that are neither blank nor a header
};

}  // namespace

DataChecks CheckData(const std::string& content, const std::vector<DataRow>& rows) {
  if (IsUtf16(content)) {
    return {{{Severity::kError, Utf16Text{}, {}}}, {}};
  }
  Found found = RowSorter(rows).FoundIn(content);
  SortFindings(found.findings);
  DataChecks checks = {std::move(found.findings), {}};
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (found.leaveOut.count(rows[i].line) != 0) {
      checks.leaveOut.push_back(i);
    }
  }
  return checks;
}

}  // namespace trackedcam::host
