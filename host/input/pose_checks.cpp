#include "host/input/pose_checks.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>
#include <unordered_map>

#include "host/input/row_words.h"
#include "host/text/number_text.h"

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

}  // namespace trackedcam::host
