#include "crosscheck/misread.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include "crosscheck/chart_pose.h"
#include "crosscheck/reported_poses.h"
#include "crosscheck/solve.h"
#include "crosscheck/start.h"
#include "crosscheck/uncertainty.h"

namespace trackedcam::crosscheck {
namespace {

// Rows.

constexpr double kTimesBetter = 4;
constexpr int kReadingSamples = 24;
constexpr std::size_t kMostLoops = 30;  // enough to see whether a reading fits
// Positions a hundred times smaller bring the boards nearer together without a fit.
constexpr double kMostMetres = 0.03;
// The rows are right if the boards are as near as this; metres.
constexpr double kSurelyRight = 2e-4;

constexpr std::array<RowReading, 17> kReadings = {RowReading::kQuaternionsInverted,
                                                  RowReading::kOrderXyzw,
                                                  RowReading::kTrackersExchanged,
                                                  RowReading::kRowsLate,
                                                  RowReading::kRowsEarly,
                                                  RowReading::kMillimetres,
                                                  RowReading::kCentimetres,
                                                  RowReading::kLeftHanded,
                                                  RowReading::kMirroredX,
                                                  RowReading::kMirroredY,
                                                  RowReading::kMirroredZ,
                                                  RowReading::kInches,
                                                  RowReading::kEngineCentimetres,
                                                  RowReading::kCameraInverted,
                                                  RowReading::kChartInverted,
                                                  RowReading::kCameraLate,
                                                  RowReading::kChartLate};

// From a photograph to the rows that have the poses of its trackers.
struct RowOffsets {
  std::ptrdiff_t camera = 0;
  std::ptrdiff_t chart = 0;
};

RowOffsets OffsetsOf(std::optional<RowReading> reading) {
  return reading == RowReading::kRowsLate     ? RowOffsets{1, 1}
         : reading == RowReading::kRowsEarly  ? RowOffsets{-1, -1}
         : reading == RowReading::kCameraLate ? RowOffsets{1, 0}
         : reading == RowReading::kChartLate  ? RowOffsets{0, 1}
                                              : RowOffsets{};
}

// Between the boards as seen and as predicted from the trackers; NaN if nothing fits.
double MedianMetres(const Observations& observations, const Evidence& evidence,
                    std::optional<RowReading> reading) {
  const auto& photographs = observations.photographs;
  const RowForm form = FormOf(observations);
  const RowOffsets offsets = OffsetsOf(reading);
  // Null for a row before the first or after the last.
  const auto rowAt = [&](std::size_t photograph, std::ptrdiff_t offset) {
    const std::ptrdiff_t row = static_cast<std::ptrdiff_t>(photograph) + offset;
    const bool exists = row >= 0 && row < static_cast<std::ptrdiff_t>(photographs.size());
    return exists ? &photographs[static_cast<std::size_t>(row)] : nullptr;
  };
  const std::size_t stride = (photographs.size() + kMostLoops - 1) / kMostLoops;
  Loops loops;
  for (std::size_t i = 0; i < photographs.size(); i += std::max<std::size_t>(stride, 1)) {
    const Photograph* const camera = rowAt(i, offsets.camera);
    const Photograph* const chart = rowAt(i, offsets.chart);
    if (!evidence.corners.poses[i] || camera == nullptr || chart == nullptr) {
      continue;
    }
    const auto Transform_Tc_Tr = TransformOfRows(camera->camera, chart->chart, form, reading);
    if (Transform_Tc_Tr) {
      Loop loop;
      loop.photographs = {i};
      loop.Transform_Cam_Chart = evidence.corners.poses[i]->Transform_Cam_Chart;
      loop.Transform_Tc_Tr = *Transform_Tc_Tr;
      loops.push_back(loop);
    }
  }
  // With six or fewer almost anything fits.
  const auto start =
      loops.size() > 6 ? FindStart(loops, BoardDistance(evidence), kReadingSamples) : std::nullopt;
  return start ? start->medianMetres : std::nan("");
}

// Mountings.

// What a mistake may leave unexplained: a share of the difference, and what inaccurate measuring
// can leave, in metres (see DistanceBetween).
constexpr double kMostLeftShare = 0.25;
constexpr double kMostLeft = 0.02;

struct Misstatement {
  MountingMistake mistake;
  Pose mounting;
};

// Rotation and translation in one measure: what they do at a third of a metre.
double DistanceBetween(const Pose& a, const Pose& b) {
  constexpr double kLever = 0.3;  // metres
  return (a.translation() - b.translation()).norm() +
         kLever * Log(a.inverse() * b).head<3>().norm();
}

Pose PoseWith(const Eigen::Matrix3d& rotation, const Eigen::Vector3d& translation) {
  Pose pose(rotation);
  pose.translation() = translation;
  return pose;
}

// The true mounting under each mistake.
std::vector<Misstatement> Misstatements(const Mounting& stated,
                                        const std::vector<Eigen::Vector3d>& board) {
  const Pose pose = TransformOf(stated);
  const Eigen::Vector3d translation = pose.translation();
  const std::array<double, 3>& angles = stated.rotationDegrees;

  std::vector<Misstatement> all = {
      {MountingMistake::kInverse, pose.inverse()},
      {MountingMistake::kMillimetres, PoseWith(pose.linear(), translation / 1000)},
      {MountingMistake::kCentimetres, PoseWith(pose.linear(), translation / 100)},
      {MountingMistake::kReportedAxes, Pose(AxisFix()) * pose},
      {MountingMistake::kBoardTurned, pose * ReversedBoard(board)},
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
      rotation = rotation * RotationAbout(axis, angles[static_cast<std::size_t>(axis)]);
    }
    all.push_back({MountingMistake::kAngleOrder, PoseWith(rotation, translation)});
  }
  return all;
}

}  // namespace

std::optional<MisreadRows> FindMisreadRows(const Observations& observations,
                                           const Evidence& evidence) {
  // Without enough rotation, positions are free to fit: of a chart on a turntable, those in metres
  // fit no better than those in millimetres.
  Solution all;
  all.used.assign(evidence.loops.size(), true);
  if (!(DiversityOf(evidence.loops, all).amplification <= kMostAmplification)) {
    return std::nullopt;
  }
  const double asRead = MedianMetres(observations, evidence, std::nullopt);
  if (asRead < kSurelyRight) {
    return std::nullopt;
  }
  MisreadRows best;
  double smallest = HUGE_VAL;
  for (const RowReading reading : kReadings) {
    const double median = MedianMetres(observations, evidence, reading);
    if (median < smallest) {
      smallest = median;
      best = {reading, asRead / median, asRead * 1e3, median * 1e3};
    }
  }
  // If nothing fits the rows as they are, any fit is better.
  const bool fits =
      smallest < kMostMetres && (std::isnan(asRead) || smallest * kTimesBetter < asRead);
  return fits ? std::optional(best) : std::nullopt;
}

std::optional<MountingMistake> LikelyMistake(const Mounting& stated,
                                             const std::vector<Eigen::Vector3d>& board,
                                             const Pose& Transform_Tr_Chart) {
  const double asStated = DistanceBetween(TransformOf(stated), Transform_Tr_Chart);
  double nearest = std::min(kMostLeft, kMostLeftShare * asStated);
  std::optional<MountingMistake> likely;
  for (const Misstatement& misstatement : Misstatements(stated, board)) {
    const double distance = DistanceBetween(misstatement.mounting, Transform_Tr_Chart);
    if (distance < nearest) {
      nearest = distance;
      likely = misstatement.mistake;
    }
  }
  return likely;
}

}  // namespace trackedcam::crosscheck
