#include "crosscheck/noise.h"

#include <algorithm>
#include <cmath>

namespace trackedcam::crosscheck {
namespace {

// Rows hold six decimals or so; below this the numbers' rounding would pass for measurements.
constexpr double kLeastTurn = 1e-14;   // (1e-7 rad)²
constexpr double kLeastShift = 1e-14;  // (0.1 µm)²

double Bounded(double wanted, double present, double least) {
  return std::max(least, std::clamp(wanted, present / 10, present * 10));
}

}  // namespace

NoiseCarriers CarriersOf(const Pose& Transform_Cam_Tc, const Pose& Transform_Cam_Tr) {
  // A rotation leaves noise that is equal along all axes as it is; only the lever counts.
  NoiseCarriers carriers = {Matrix6d::Zero(), Matrix6d::Zero()};
  for (const Pose* pose : {&Transform_Cam_Tc, &Transform_Cam_Tr}) {
    Eigen::Matrix<double, 6, 3> lever;
    lever << Eigen::Matrix3d::Identity(), Cross(pose->translation());
    carriers.turn += lever * lever.transpose();
  }
  carriers.shift.bottomRightCorner<3, 3>() = 2 * Eigen::Matrix3d::Identity();
  return carriers;
}

Noise ScoringStep(const Noise& noise, const LikelihoodSums& sums) {
  const Eigen::Vector2d score = 0.5 * (sums.squares - sums.expected);
  const Eigen::Matrix2d& information = sums.information;
  const double determinant = information.determinant();
  const double product = information(0, 0) * information(1, 1);
  Eigen::Vector2d change(score[0] / information(0, 0), score[1] / information(1, 1));
  const bool turnIsLeast = noise.turn <= kLeastTurn && score[0] <= 0;
  const bool shiftIsLeast = noise.shift <= kLeastShift && score[1] <= 0;
  if (!turnIsLeast && !shiftIsLeast && determinant > 1e-6 * product) {
    change = information.inverse() * score;
  }
  Noise next = noise;
  if (change.allFinite()) {
    next.turn = Bounded(noise.turn + (turnIsLeast ? 0 : change[0]), noise.turn, kLeastTurn);
    next.shift = Bounded(noise.shift + (shiftIsLeast ? 0 : change[1]), noise.shift, kLeastShift);
  }
  // Apart: neither could be nothing, each beyond two of its standard errors.
  next.isApart = determinant > 1e-6 * product &&
                 next.turn > 2 * std::sqrt(information(1, 1) / determinant) &&
                 next.shift > 2 * std::sqrt(information(0, 0) / determinant);
  return next;
}

}  // namespace trackedcam::crosscheck
