#include "crosscheck/misread.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "crosscheck/reported_poses.h"
#include "crosscheck/start.h"

namespace trackedcam::crosscheck {
namespace {

constexpr double kTimesBetter = 4;
constexpr int kSamples = 24;
// A fit needs no more photographs to show what it is worth.
constexpr std::size_t kEnough = 30;
// Positions that mean nothing lie nearer together when a hundred times smaller, and yet fit
// nothing.
constexpr double kMostMetres = 0.03;
// Nothing is misread where the boards lie as near as this; metres.
constexpr double kSurelyRight = 2e-4;

struct Attempt {
  RowReading reading;
  Meaning meaning;
  int offset;  // from a photograph to the row that belongs to it
};

constexpr std::array<Attempt, 11> kAttempts = {{
    {RowReading::kQuaternionsInverted, Meaning::kQuaternionsInverted, 0},
    {RowReading::kOrderXyzw, Meaning::kOrderXyzw, 0},
    {RowReading::kTrackersExchanged, Meaning::kTrackersExchanged, 0},
    {RowReading::kRowsLate, Meaning::kAsRead, 1},
    {RowReading::kRowsEarly, Meaning::kAsRead, -1},
    {RowReading::kMillimetres, Meaning::kMillimetres, 0},
    {RowReading::kCentimetres, Meaning::kCentimetres, 0},
    {RowReading::kLeftHanded, Meaning::kLeftHanded, 0},
    {RowReading::kMirroredX, Meaning::kMirroredX, 0},
    {RowReading::kMirroredY, Meaning::kMirroredY, 0},
    {RowReading::kMirroredZ, Meaning::kMirroredZ, 0},
}};

// NaN where there is no fit.
double MedianMetres(const Observations& observations, const Evidence& evidence, Meaning meaning,
                    int offset) {
  const auto& photographs = observations.photographs;
  const std::size_t stride = (photographs.size() + kEnough - 1) / kEnough;
  Loops loops;
  for (std::size_t i = 0; i < photographs.size(); i += std::max<std::size_t>(stride, 1)) {
    const auto row = static_cast<std::ptrdiff_t>(i) + offset;
    if (!evidence.chartPoses[i] || row < 0 ||
        row >= static_cast<std::ptrdiff_t>(photographs.size())) {
      continue;
    }
    const auto Transform_Tc_Tr = TransformOfRow(photographs[static_cast<std::size_t>(row)],
                                                observations.invertTrackerQuaternions, meaning);
    if (Transform_Tc_Tr) {
      Loop loop;
      loop.photograph = i;
      loop.Transform_Cam_Chart = evidence.chartPoses[i]->Transform_Cam_Chart;
      loop.Transform_Tc_Tr = *Transform_Tc_Tr;
      loops.push_back(loop);
    }
  }
  // With six or fewer almost anything fits.
  const auto start =
      loops.size() > 6 ? FindStart(loops, BoardDistance(evidence), kSamples) : std::nullopt;
  return start ? start->medianMetres : std::nan("");
}

// A slip must explain all but this share of the difference, and leave what measuring could have
// left.
constexpr double kLeftOver = 0.25;
constexpr double kMostLeft = 0.02;  // metres, see Apart

struct Misstatement {
  MountingMistake mistake;
  Pose mounting;
};

// Turns and shifts in one measure: what they do a third of a metre away.
double Apart(const Pose& a, const Pose& b) {
  constexpr double kLever = 0.3;  // metres
  return (a.translation() - b.translation()).norm() +
         kLever * Log(a.inverse() * b).head<3>().norm();
}

Pose With(const Eigen::Matrix3d& rotation, const Eigen::Vector3d& translation) {
  Pose pose(rotation);
  pose.translation() = translation;
  return pose;
}

// The chart's frame as it is when the detector begins at the opposite corner.
Pose HalfTurnOfBoard(const Observations& observations) {
  return With(TurnAbout(2, 180), {(observations.boardColumns - 1) * observations.square,
                                  (observations.boardRows - 1) * observations.square, 0});
}

std::vector<Misstatement> Misstatements(const Observations& observations) {
  const Mounting& stated = *observations.mounting;
  const Pose pose = TransformOf(stated);
  const Eigen::Vector3d shift = pose.translation();
  const std::array<double, 3>& angles = stated.rotationDegrees;

  std::vector<Misstatement> all = {
      {MountingMistake::kInverse, pose.inverse()},
      {MountingMistake::kMillimetres, With(pose.linear(), shift / 1000)},
      {MountingMistake::kCentimetres, With(pose.linear(), shift / 100)},
      {MountingMistake::kReportedAxes, Pose(AxisFix()) * pose},
      {MountingMistake::kBoardTurned, pose * HalfTurnOfBoard(observations)},
  };
  for (unsigned signs = 1; signs < 8; ++signs) {
    Mounting other = stated;
    for (std::size_t axis = 0; axis < 3; ++axis) {
      other.rotationDegrees[axis] *= (signs >> axis & 1U) != 0 ? -1 : 1;
    }
    all.push_back({MountingMistake::kAngleSigns, TransformOf(other)});
  }
  std::array<int, 3> order = {0, 1, 2};
  while (std::next_permutation(order.begin(), order.end())) {
    Eigen::Matrix3d rotation = Eigen::Matrix3d::Identity();
    for (const int axis : order) {
      rotation = rotation * TurnAbout(axis, angles[static_cast<std::size_t>(axis)]);
    }
    all.push_back({MountingMistake::kAngleOrder, With(rotation, shift)});
  }
  return all;
}

}  // namespace

std::optional<MisreadRows> FindMisreadRows(const Observations& observations,
                                           const Evidence& evidence) {
  const double asRead = MedianMetres(observations, evidence, Meaning::kAsRead, 0);
  if (asRead < kSurelyRight) {
    return std::nullopt;
  }
  MisreadRows best;
  double smallest = HUGE_VAL;
  for (const Attempt& attempt : kAttempts) {
    const double median = MedianMetres(observations, evidence, attempt.meaning, attempt.offset);
    if (median < smallest) {
      smallest = median;
      best = {attempt.reading, asRead / median, asRead * 1e3, median * 1e3};
    }
  }
  // Rows that cannot be read as they stand compare with nothing: any fit is better.
  const bool fits =
      smallest < kMostMetres && (std::isnan(asRead) || smallest * kTimesBetter < asRead);
  return fits ? std::optional(best) : std::nullopt;
}

std::optional<MountingMistake> LikelyMistake(const Observations& observations,
                                             const Pose& Transform_Tr_Chart) {
  const double asStated = Apart(TransformOf(*observations.mounting), Transform_Tr_Chart);
  double nearest = std::min(kMostLeft, kLeftOver * asStated);
  std::optional<MountingMistake> likely;
  for (const Misstatement& misstatement : Misstatements(observations)) {
    const double apart = Apart(misstatement.mounting, Transform_Tr_Chart);
    if (apart < nearest) {
      nearest = apart;
      likely = misstatement.mistake;
    }
  }
  return likely;
}

}  // namespace trackedcam::crosscheck
