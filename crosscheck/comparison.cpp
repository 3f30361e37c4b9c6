#include "crosscheck/comparison.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include <Eigen/Cholesky>
#include <Eigen/SVD>

#include "crosscheck/distributions.h"

namespace trackedcam::crosscheck {
namespace {

constexpr double kDegree = EIGEN_PI / 180;
constexpr double kMetresPerMm = 1e-3;

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

std::optional<Offset> CompareHalves(const Evidence& evidence, const Solution& solution) {
  constexpr std::size_t kLeast = 6;  // photographs in a half
  if (solution.Used() < 2 * kLeast) {
    return std::nullopt;
  }
  std::optional<Solution> halves[2];
  for (std::size_t half = 0; half < 2; ++half) {
    Choice choice;
    choice.isFixed = true;
    choice.noise = solution.noise;
    choice.first.assign(evidence.loops.size(), false);
    std::size_t seen = 0;
    for (std::size_t i = 0; i < evidence.loops.size(); ++i) {
      if (solution.used[i]) {
        choice.first[i] = (2 * seen < solution.Used()) == (half == 0);
        ++seen;
      }
    }
    halves[half] = Solve(evidence.loops, solution, choice);
    if (!halves[half]) {
      return std::nullopt;
    }
  }
  const Pose& first = halves[0]->Transform_Cam_Tc;
  const Pose& second = halves[1]->Transform_Cam_Tc;
  // The lens is the same for both; only what it does to them differently counts.
  const Eigen::MatrixXd byLens = halves[0]->byLens - halves[1]->byLens;
  const Eigen::MatrixXd covariance = halves[0]->covariance + halves[1]->covariance +
                                     byLens * evidence.lensCovariance * byLens.transpose();
  return Tested(Between(first, second), Log(first * second.inverse()),
                covariance.topLeftCorner<6, 6>(), Freedom(solution) - 6);
}

Diversity DiversityOf(const Loops& loops, const Solution& solution) {
  Eigen::Matrix3d mean = Eigen::Matrix3d::Zero();
  for (std::size_t i = 0; i < loops.size(); ++i) {
    if (solution.used[i]) {
      mean += loops[i].Transform_Cam_Chart.linear();
    }
  }
  mean /= static_cast<double>(std::max<std::size_t>(solution.Used(), 1));
  const Eigen::JacobiSVD<Eigen::Matrix3d> svd(mean, Eigen::ComputeFullU | Eigen::ComputeFullV);
  // A turn of the mounting about this axis looks almost like one of the camera, in every
  // photograph.
  const double common = svd.singularValues()[0];
  Diversity diversity;
  diversity.amplification =
      common < 1 ? 1 / std::sqrt(1 - common * common) : std::numeric_limits<double>::infinity();
  diversity.weakestAxisInChart = svd.matrixV().col(0);
  return diversity;
}

}  // namespace trackedcam::crosscheck
