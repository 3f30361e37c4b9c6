#include "crosscheck/comparison.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include <Eigen/Cholesky>
#include <Eigen/Eigenvalues>

#include "crosscheck/angle.h"
#include "crosscheck/distributions.h"
#include "crosscheck/solve.h"

namespace trackedcam::crosscheck {
namespace {

constexpr double kMetresPerMm = 1e-3;
constexpr double kGoodAmplification = 3;

StandardError FromDerivatives(const Matrix6d& covariance, const Eigen::Matrix<double, 3, 6>& turn,
                              const Eigen::Matrix<double, 3, 6>& shift) {
  StandardError error;
  error.turnDegrees = (turn * covariance * turn.transpose()).diagonal().cwiseSqrt() / kDegree;
  error.shiftMm = (shift * covariance * shift.transpose()).diagonal().cwiseSqrt() / kMetresPerMm;
  return error;
}

Offset Tested(Offset offset, const Twist& difference, const Matrix6d& covariance, double freedom) {
  offset.p = HotellingTail(difference.dot(covariance.ldlt().solve(difference)), 6, freedom);
  return offset;
}

}  // namespace

Eigen::MatrixXd FullCovariance(const Solution& solution, const Evidence& evidence) {
  return solution.covariance +
         solution.byLens * evidence.lensCovariance * solution.byLens.transpose();
}

double Freedom(const Solution& solution) {
  return 3 * static_cast<double>(solution.Used()) - 6;
}

StandardError StandardErrorOfLeftTwist(const Matrix6d& covariance, const Pose& pose) {
  Eigen::Matrix<double, 3, 6> turn = Eigen::Matrix<double, 3, 6>::Zero();
  turn.leftCols<3>().setIdentity();
  Eigen::Matrix<double, 3, 6> shift;
  shift << -Cross(pose.translation()), Eigen::Matrix3d::Identity();
  return FromDerivatives(covariance, turn, shift);
}

StandardError StandardErrorOfRightTwist(const Matrix6d& covariance, const Pose& pose) {
  Eigen::Matrix<double, 3, 6> turn = Eigen::Matrix<double, 3, 6>::Zero();
  turn.leftCols<3>() = pose.linear();
  Eigen::Matrix<double, 3, 6> shift = Eigen::Matrix<double, 3, 6>::Zero();
  shift.rightCols<3>() = pose.linear();
  return FromDerivatives(covariance, turn, shift);
}

Offset Between(const Pose& a, const Pose& b) {
  Offset offset;
  offset.offMm = (a.translation() - b.translation()).norm() / kMetresPerMm;
  offset.offDegrees = Log(a.inverse() * b).head<3>().norm() / kDegree;
  return offset;
}

Offset CompareCamTc(const Solution& solution, const Matrix6d& covariance, const Pose& other) {
  return Tested(Between(other, solution.Transform_Cam_Tc),
                Log(other * solution.Transform_Cam_Tc.inverse()), covariance, Freedom(solution));
}

Offset CompareMounting(const Solution& solution, const Matrix6d& covariance, const Pose& other) {
  return Tested(Between(other, solution.Transform_Tr_Chart),
                Log(solution.Transform_Tr_Chart.inverse() * other), covariance, Freedom(solution));
}

// Solved apart the halves would share neither transform, and each would hide most of a drift in the
// doubt that it leaves between both. With both shared only the drift is left to explain a
// difference.
std::optional<Offset> CompareHalves(const Evidence& evidence, const Solution& solution) {
  constexpr std::size_t kLeast = 6;  // photographs in a half
  if (solution.Used() < 2 * kLeast) {
    return std::nullopt;
  }
  Choice choice;
  choice.isFixed = true;
  choice.first = solution.used;
  std::size_t middle = 0;
  for (std::size_t seen = 0; 2 * seen < solution.Used(); ++middle) {
    seen += solution.used[middle] ? 1 : 0;
  }
  std::optional<Offset> likelier;
  for (const Tracker tracker : {Tracker::kCamera, Tracker::kChart}) {
    Solution from = solution;
    from.sought.step = tracker;
    from.sought.before = middle;
    const std::optional<Solution> solved = Solve(evidence.loops, from, choice);
    if (!solved) {
      continue;
    }
    const Matrix6d covariance = FullCovariance(*solved, evidence).bottomRightCorner<6, 6>();
    Offset offset = Tested(Between(solved->step, Pose::Identity()), Log(solved->step), covariance,
                           Freedom(solution) - 3);
    if (!likelier || offset.p < likelier->p) {
      likelier = offset;
    }
  }
  if (likelier) {
    likelier->p = std::min(1.0, 2 * likelier->p);  // two were tried
  }
  return likelier;
}

Diversity DiversityOf(const Loops& loops, const Solution& solution) {
  Eigen::Matrix3d mean = Eigen::Matrix3d::Zero();
  for (std::size_t i = 0; i < loops.size(); ++i) {
    if (solution.used[i]) {
      mean += loops[i].Transform_Cam_Chart.linear();
    }
  }
  mean /= static_cast<double>(std::max<std::size_t>(solution.Used(), 1));
  // Its singular values, the largest first: what is common to all rotations, about each axis.
  const Eigen::SelfAdjointEigenSolver<Eigen::Matrix3d> squares(mean.transpose() * mean);
  const Eigen::Vector3d common = squares.eigenvalues().reverse().cwiseMax(0).cwiseSqrt();
  const Eigen::Matrix3d axes = squares.eigenvectors().rowwise().reverse();
  Diversity diversity;
  diversity.amplification = common[0] < 1 ? 1 / std::sqrt(1 - common[0] * common[0])
                                          : std::numeric_limits<double>::infinity();
  // A turn of the mounting about this axis looks almost like one of the camera, in every
  // photograph.
  diversity.weakestAxisInChart = axes.col(0);

  // As many photographs again with the chart turned by an angle about an axis, half of them to
  // either side, leave that axis what it has in common and (1 + cos) / 2 of it to the axes across.
  // So the axis to turn about is the one that has least in common already. Where that is too much
  // as well, half of them are turned about the next one: (3 + cos) / 4 is left to both.
  const double enough = std::sqrt(1 - 1 / (kGoodAmplification * kGoodAmplification));
  const auto turn = [](double cosine) {
    return std::acos(std::clamp(cosine, -1.0, 1.0)) / kDegree;
  };
  diversity.turnAboutInChart = axes.col(2);
  diversity.turnDegrees = turn(2 * enough / common[0] - 1);
  if (common[2] > enough) {
    diversity.axesToTurnAbout = 2;
    diversity.turnDegrees = std::max(diversity.turnDegrees, turn(4 * enough / common[1] - 3));
  }
  return diversity;
}

}  // namespace trackedcam::crosscheck
