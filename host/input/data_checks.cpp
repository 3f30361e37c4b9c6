#include "host/input/data_checks.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "host/findings/row_words.h"
#include "host/input/data_file.h"
#include "host/input/inputs.h"
#include "host/text/text.h"

namespace trackedcam::host {
namespace {

constexpr double kLengthTolerance = 0.02;  // of a quaternion; two decimals leave 0.01
constexpr double kFarthestMetres = 30;     // of chart and camera from each other on any set
constexpr double kMoveMetres = 1e-3;
constexpr double kMoveDegrees = 0.1;
constexpr double kDegreesPerRadian = 57.295779513082323;
constexpr std::array<const char*, 2> kTrackers = {"camera's", "chart's"};

double Norm(double a, double b, double c, double d = 0) {
  return std::hypot(std::hypot(a, b), std::hypot(c, d));
}

double QuaternionLength(const TrackerPose& pose) {
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
  const double cosine = std::abs(product) / (QuaternionLength(a) * QuaternionLength(b));
  return 2 * std::acos(std::min(cosine, 1.0)) * kDegreesPerRadian;
}

bool Moves(const TrackerPose& a, const TrackerPose& b) {
  return Metres(a, b) > kMoveMetres || Degrees(a, b) > kMoveDegrees;
}

template <class Has>
RowList RowsThat(const std::vector<PoseRow>& rows, Has has) {
  RowList some;
  for (const PoseRow& row : rows) {
    if (has(row)) {
      some.push_back(row.row);
    }
  }
  return some;
}

void Add(std::vector<Finding>& findings, const FaultWords& words, const RowList& rows,
         std::size_t all) {
  if (!rows.empty()) {
    findings.push_back(RowFinding(words, rows, all));
  }
}

bool IsZeroQuaternion(const TrackerPose& pose) {
  return QuaternionLength(pose) == 0;
}

// Nothing but zeros; some systems report no rotation, at the origin.
bool IsLost(const TrackerPose& pose) {
  return IsAtOrigin(pose) && (IsZeroQuaternion(pose) || std::abs(pose[3]) == 1);
}

void CheckTracking(const std::vector<PoseRow>& rows, std::vector<Finding>& findings) {
  // A tracker that is the origin of the tracking system stands there in every row.
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
  Add(findings,
      {"lostTracking", "Tracking was lost in ", ": a tracker stands at the origin, not turned.",
       "Take these rows out of the file, and photograph where both trackers are seen."},
      RowsThat(rows, isLost), rows.size());
  Add(findings,
      {"zeroQuaternion", "The quaternion of a tracker is zero in ", ", so its turn is not known.",
       "Record w, x, y and z of each tracker's quaternion, or take these rows out of the file."},
      RowsThat(rows, isZeroOnly), rows.size());
}

bool HasOddLength(const TrackerPose& pose) {
  return !IsZeroQuaternion(pose) && std::abs(QuaternionLength(pose) - 1) > kLengthTolerance;
}

void CheckQuaternionLength(const std::vector<PoseRow>& rows, std::vector<Finding>& findings) {
  const auto isOdd = [](const PoseRow& row) {
    return HasOddLength(row.poses[0]) || HasOddLength(row.poses[1]);
  };
  const RowList odd = RowsThat(rows, isOdd);
  if (odd.empty()) {
    return;
  }
  const auto first = std::find_if(rows.begin(), rows.end(), isOdd);
  const std::size_t tracker = HasOddLength(first->poses[0]) ? 0 : 1;
  const double length = QuaternionLength(first->poses[tracker]);
  const std::string after = " (" + Shortest(std::round(length * 1000) / 1000) + " in row " +
                            std::to_string(first->row->line) + ").";
  Finding finding = RowFinding(
      {"quaternionLength", "The quaternion of a tracker does not have length 1 in ", after.c_str(),
       "Check the order of the fields: position x, y, z, then quaternion w, x, y, z, of the "
       "camera's tracker and then of the chart's."},
      odd, rows.size());
  finding.severity = Severity::kWarning;  // scaled ones serve all the same
  finding.numbers.emplace_back("length", length);
  findings.push_back(finding);
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
  if (*middle <= kFarthestMetres) {
    return;
  }
  Finding finding;
  finding.id = "lengthUnit";
  finding.severity = Severity::kError;
  finding.text = "The two trackers are " + Fixed(*middle, 0) +
                 " m apart; lengths in millimetres would make it " + Fixed(*middle / 1000, 2) +
                 " m, in centimetres " + Fixed(*middle / 100, 2) + " m.";
  finding.advice = "Record positions in metres, or convert them.";
  finding.numbers = {{"metres", *middle}};
  findings.push_back(finding);
}

void CheckFrozen(const std::vector<PoseRow>& rows, std::size_t tracker,
                 std::vector<Finding>& findings) {
  RowList frozen;
  std::size_t moves = 0;
  for (std::size_t i = 1; i < rows.size(); ++i) {
    const auto& before = rows[i - 1].poses;
    const auto& now = rows[i].poses;
    if (Moves(before[1 - tracker], now[1 - tracker])) {
      ++moves;
      if (before[tracker] == now[tracker]) {
        frozen.push_back(rows[i].row);
      }
    }
  }
  if (frozen.empty() || frozen.size() == moves) {  // it stands on a tripod
    return;
  }
  const std::string before =
      std::string("The ") + kTrackers[tracker] + " tracker reports the pose of the row before in ";
  Finding finding = RowFinding(
      {"frozenPose", before.c_str(), ", to the last digit, while the other tracker moves.",
       "Check that it was seen and did move there; if so, take these rows out of the file."},
      frozen, rows.size());
  const bool mostlyStands = 2 * frozen.size() > moves;
  finding.severity = mostlyStands ? Severity::kNote : Severity::kWarning;
  finding.detail = tracker == 0 ? "camera" : "chart";
  findings.push_back(finding);
}

void CheckRepeatedPoses(const std::vector<PoseRow>& rows, std::vector<Finding>& findings) {
  std::unordered_map<std::string, const PoseRow*> seen;
  RowList repeated;
  for (const PoseRow& row : rows) {
    std::string key(sizeof row.poses, '\0');
    std::memcpy(key.data(), row.poses.data(), sizeof row.poses);
    const auto [first, isNew] = seen.emplace(key, &row);
    if (!isNew && first->second->row->photograph != row.row->photograph) {
      repeated.push_back(row.row);
    }
  }
  if (repeated.empty()) {
    return;
  }
  Finding finding =
      RowFinding({"repeatedPoses", "Both trackers report the poses of an earlier row in ",
                  ", to the last digit.",
                  "If something had moved between the photographs, the recorder "
                  "stood still: take these rows out of the file."},
                 repeated, rows.size());
  const bool isMany = finding.severity == Severity::kError;
  finding.severity = isMany ? Severity::kWarning : Severity::kNote;
  findings.push_back(finding);
}

// With fewer the library gives up; the same photograph twice it counts twice.
constexpr std::size_t kLeastPhotographs = 12;

// The rows of each fault; one row may have several.
struct FaultyRows {
  RowList blank, header, semicolons, tabs, bars, quotes, decimalCommas, extraColumn;
  RowList pathEncoding, missing, notFinite, tooLarge, text, repeated;
  // Where the first of each stands: " (field 5 of row 4, photos/a.jpg)".
  std::string firstNotFinite, firstTooLarge, firstText;
};

bool IsUtf16(std::string_view content) {
  const std::string_view begin = content.substr(0, 4096);
  const auto zeros = static_cast<std::size_t>(std::count(begin.begin(), begin.end(), '\0'));
  return begin.size() >= 4 && zeros * 4 >= begin.size();
}

template <class Has>
std::vector<DataRow> LinesThat(const std::string& content, Has has) {
  std::vector<DataRow> lines;
  std::size_t number = 0;
  for (const std::string_view line : SplitFields(content, '\n')) {
    ++number;
    if (has(line)) {
      lines.push_back({number, std::string(line), ""});
    }
  }
  return lines;
}

RowList ListOf(const std::vector<DataRow>& rows) {
  RowList list;
  for (const DataRow& row : rows) {
    list.push_back(&row);
  }
  return list;
}

void SortByForm(const DataRow& row, const RowForm& form, FaultyRows& faulty) {
  const auto add = [&](bool has, RowList& rows) {
    if (has) {
      rows.push_back(&row);
    }
  };
  add(form.separator == ';', faulty.semicolons);
  add(form.separator == '\t', faulty.tabs);
  add(form.separator == '|', faulty.bars);
  add(form.hasQuotes, faulty.quotes);
  add(form.hasDecimalCommas, faulty.decimalCommas);
  add(form.hasExtraColumn, faulty.extraColumn);
}

// The time is only echoed, so it may be anything.
bool HasMissingFields(const std::vector<std::string_view>& fields) {
  const auto isEmpty = [](std::string_view field) { return KindOf(field) == FieldKind::kEmpty; };
  return fields.size() < kFields ||
         std::any_of(fields.begin() + kPathField, fields.begin() + kFields, isEmpty);
}

// Metres, millimetres, or a part of a quaternion.
bool IsTooLarge(double figure) {
  constexpr double kLargest = 1e9;
  return figure > kLargest || figure < -kLargest;
}

std::string Place(const DataRow& row, std::size_t field) {
  return " (field " + std::to_string(field + 1) + " of row " + std::to_string(row.line) + ", " +
         row.photograph + ')';
}

// True when every figure of the poses is a number.
bool SortByFields(const DataRow& row, FaultyRows& faulty) {
  const auto fields = SplitFields(row.text);
  bool isNumeric = true;
  const auto add = [&](RowList& rows) {
    isNumeric = false;
    if (rows.empty() || rows.back() != &row) {
      rows.push_back(&row);
    }
  };
  const auto addAt = [&](std::size_t field, RowList& rows, std::string& first) {
    first = rows.empty() ? Place(row, field) : first;
    add(rows);
  };
  if (HasMissingFields(fields)) {
    add(faulty.missing);
  }
  for (std::size_t i = kFirstPoseField; i < std::min(kFields, fields.size()); ++i) {
    const FieldKind kind = KindOf(fields[i]);
    if (kind == FieldKind::kNotFinite) {
      addAt(i, faulty.notFinite, faulty.firstNotFinite);
    } else if (kind == FieldKind::kText) {
      addAt(i, faulty.text, faulty.firstText);
    } else if (IsTooLarge(NumberIn(fields[i]))) {
      addAt(i, faulty.tooLarge, faulty.firstTooLarge);
    }
  }
  return isNumeric;
}

void AddForms(const FaultyRows& faulty, std::size_t all, std::vector<Finding>& findings) {
  const auto add = [&](const RowList& rows, const FaultWords& words) {
    if (!rows.empty()) {
      findings.push_back(RowFinding(words, rows, all));
    }
  };
  constexpr const char* kSave = "Save the file with commas between the fields.";
  add(faulty.semicolons, {"separator", "Semicolons stand between the fields in ",
                          ", not commas, so no field is found.", kSave});
  add(faulty.tabs, {"separator", "Tabs stand between the fields in ",
                    ", not commas, so no field is found.", kSave});
  add(faulty.bars, {"separator", "Bars stand between the fields in ",
                    ", not commas, so no field is found.", kSave});
  add(faulty.decimalCommas,
      {"decimalComma", "Numbers have a decimal comma in ", ", and a comma ends the field.",
       "Save the file with decimal points: 1.25, not 1,25."});
  add(faulty.quotes, {"quotedFields", "Fields stand in quotes in ",
                      "; a number in quotes reads as 0, and a path in quotes names no photograph.",
                      "Save the file without quotes."});
  add(faulty.extraColumn,
      {"extraColumn", "A column too many stands before the photograph in ",
       ", so every number is read from the wrong field.",
       "Remove it: a row is the time, the photograph, then seven numbers for each tracker."});
}

void AddFields(const FaultyRows& faulty, std::size_t all, std::vector<Finding>& findings) {
  const auto add = [&](const RowList& rows, const FaultWords& words) -> Finding* {
    return rows.empty() ? nullptr : &findings.emplace_back(RowFinding(words, rows, all));
  };
  add(faulty.pathEncoding,
      {"pathEncoding", "The path of the photograph is not UTF-8 in ", ", so it cannot be opened.",
       "Save the file as UTF-8, or give the photographs names of plain letters."});
  const auto addSpoiling = [&](const char* id, const char* before, const RowList& rows,
                               const std::string& first) {
    const std::string after = first + "; one such row can spoil the whole result.";
    if (Finding* finding =
            add(rows, {id, before, after.c_str(),
                       "Take these rows out of the file: the tracker gave no pose."})) {
      finding->severity = Severity::kError;
    }
  };
  addSpoiling("noNumber", "A figure is nan or infinite in ", faulty.notFinite,
              faulty.firstNotFinite);
  addSpoiling("tooLarge", "A figure is far larger than any pose has in ", faulty.tooLarge,
              faulty.firstTooLarge);
  const std::string afterText = faulty.firstText + ", which reads as 0 or in part.";
  add(faulty.text, {"noNumber", "Text stands where a number must in ", afterText.c_str(),
                    "Write plain numbers, such as -1.25 or 1.5e-3, or take these rows out."});
  add(faulty.missing, {"missingFields", "Fields are missing or empty in ", "; each reads as 0.",
                       "A row has 16 fields: time, photograph, then x, y, z, qw, qx, qy, qz of the "
                       "camera's tracker and of the chart's."});
}

void AddNotes(const FaultyRows& faulty, std::vector<Finding>& findings) {
  const auto add = [&](const RowList& rows, const FaultWords& words) {
    if (!rows.empty()) {
      findings.push_back(RowFinding(words, rows, 0));
      findings.back().severity = Severity::kNote;
    }
  };
  add(faulty.blank,
      {"blankLines", "There is nothing in ", "; a blank line counts as a row without a photograph.",
       "Delete the blank lines."});
  add(faulty.header, {"header", "The header in ",
                      " does not begin with \"Time,\", so it counts as a row without a photograph.",
                      "Let the first line begin with \"Time,\"."});
}

void AddRepeated(const RowList& repeated, std::size_t different, std::size_t all,
                 std::vector<Finding>& findings) {
  if (repeated.empty()) {
    return;
  }
  Finding finding =
      RowFinding({"repeatedRows", "A photograph that an earlier row names is named again in ",
                  ", and counts each time.", "Keep one row for each photograph."},
                 repeated, all);
  const bool areTooFew = different < kLeastPhotographs && all >= kLeastPhotographs;
  finding.severity = areTooFew ? Severity::kError : Severity::kWarning;
  finding.numbers.emplace_back("different", static_cast<double>(different));
  findings.push_back(finding);
}

// What the rows themselves cannot tell: lines that are skipped, and text of another encoding.
void AddLines(const std::string& content, const FaultyRows& faulty, std::size_t rows,
              std::vector<Finding>& findings) {
  const std::vector<DataRow> skipped = LinesThat(content, IsSkippedRow);
  if (!skipped.empty()) {
    findings.push_back(
        RowFinding({"timesBeginWithT", "The time begins with T in ",
                    ", and such a line is skipped.", "Write times that begin with a digit."},
                   ListOf(skipped), rows + skipped.size()));
  }
  if (faulty.pathEncoding.empty() && !IsUtf8(content)) {
    const auto odd = LinesThat(content, [](std::string_view line) { return !IsUtf8(line); });
    Finding finding = RowFinding({"encoding", "There are letters that are not UTF-8 in ",
                                  ", but in no path of a photograph.", "Save the file as UTF-8."},
                                 ListOf(odd), 0);
    finding.severity = Severity::kNote;
    findings.push_back(finding);
  }
}

}  // namespace

std::vector<Finding> CheckPoses(const std::vector<PoseRow>& rows) {
  std::vector<Finding> findings;
  CheckTracking(rows, findings);
  CheckQuaternionLength(rows, findings);
  std::vector<PoseRow> tracked;
  std::copy_if(rows.begin(), rows.end(), std::back_inserter(tracked), [](const PoseRow& row) {
    return !IsZeroQuaternion(row.poses[0]) && !IsZeroQuaternion(row.poses[1]);
  });
  CheckLengthUnit(tracked, findings);
  CheckFrozen(tracked, 0, findings);
  CheckFrozen(tracked, 1, findings);
  CheckRepeatedPoses(tracked, findings);
  return findings;
}

std::vector<Finding> CheckData(const std::string& content, const std::vector<DataRow>& rows) {
  if (IsUtf16(content)) {
    Finding finding;
    finding.id = "encoding";
    finding.severity = Severity::kError;
    finding.text = "The data file is UTF-16 text, so no row of it can be read.";
    finding.advice = "Save it as UTF-8, with commas between the fields.";
    return {finding};
  }
  FaultyRows faulty;
  std::vector<PoseRow> poses;
  std::unordered_set<std::string_view> photographs;
  std::size_t all = 0;
  for (const DataRow& row : rows) {
    const RowForm form = FormOf(row);
    if (form.isBlank || form.isHeader) {
      (form.isBlank ? faulty.blank : faulty.header).push_back(&row);
      continue;
    }
    ++all;
    SortByForm(row, form, faulty);
    if (!form.IsPlain()) {
      continue;
    }
    if (!IsUtf8(row.photograph)) {
      faulty.pathEncoding.push_back(&row);
    }
    if (!row.photograph.empty() && !photographs.insert(row.photograph).second) {
      faulty.repeated.push_back(&row);
    }
    if (SortByFields(row, faulty)) {
      poses.push_back({&row, PosesIn(SplitFields(row.text))});
    }
  }
  std::vector<Finding> findings;
  AddForms(faulty, all, findings);
  AddLines(content, faulty, all, findings);
  AddFields(faulty, all, findings);
  for (Finding& finding : CheckPoses(poses)) {
    findings.push_back(std::move(finding));
  }
  AddRepeated(faulty.repeated, photographs.size(), all, findings);
  AddNotes(faulty, findings);
  SortFindings(findings);
  return findings;
}

}  // namespace trackedcam::host
