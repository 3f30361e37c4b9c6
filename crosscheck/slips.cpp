#include "crosscheck/slips.h"

#include <algorithm>
#include <array>
#include <vector>

#include "crosscheck/mounting.h"

namespace trackedcam::crosscheck {
namespace {

// A slip must explain all but this share of the difference, and leave what measuring could have
// left.
constexpr double kLeftOver = 0.25;
constexpr double kMostLeft = 0.02;  // metres, see Apart

struct Slip {
  const char* id;
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

std::vector<Slip> Slips(const Observations& observations) {
  const Mounting& stated = *observations.mounting;
  const Pose pose = TransformOf(stated);
  const Eigen::Vector3d shift = pose.translation();
  const std::array<double, 3>& angles = stated.rotationDegrees;

  std::vector<Slip> slips = {
      {"inverse", pose.inverse()},
      {"millimetres", With(pose.linear(), shift / 1000)},
      {"centimetres", With(pose.linear(), shift / 100)},
      {"reportedAxes", Pose(AxisFix()) * pose},
      {"boardTurned", pose * HalfTurnOfBoard(observations)},
  };
  for (unsigned signs = 1; signs < 8; ++signs) {
    Mounting other = stated;
    for (std::size_t axis = 0; axis < 3; ++axis) {
      other.rotationDegrees[axis] *= (signs >> axis & 1U) != 0 ? -1 : 1;
    }
    slips.push_back({"angleSigns", TransformOf(other)});
  }
  std::array<int, 3> order = {0, 1, 2};
  while (std::next_permutation(order.begin(), order.end())) {
    Eigen::Matrix3d rotation = Eigen::Matrix3d::Identity();
    for (const int axis : order) {
      rotation = rotation * TurnAbout(axis, angles[static_cast<std::size_t>(axis)]);
    }
    slips.push_back({"angleOrder", With(rotation, shift)});
  }
  return slips;
}

}  // namespace

std::optional<std::string> LikelySlip(const Observations& observations,
                                      const Pose& Transform_Tr_Chart) {
  const double asStated = Apart(TransformOf(*observations.mounting), Transform_Tr_Chart);
  double nearest = std::min(kMostLeft, kLeftOver * asStated);
  std::optional<std::string> likely;
  for (const Slip& slip : Slips(observations)) {
    const double apart = Apart(slip.mounting, Transform_Tr_Chart);
    if (apart < nearest) {
      nearest = apart;
      likely = slip.id;
    }
  }
  return likely;
}

}  // namespace trackedcam::crosscheck
