#include "crosscheck/uncertainty.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include <Eigen/Eigenvalues>

#include "crosscheck/statistics.h"
#include "crosscheck/symmetric.h"
#include "crosscheck/twist.h"

namespace trackedcam::crosscheck {
namespace {

constexpr double kMetresPerMm = 1e-3;
constexpr double kGoodAmplification = 3;

// From how rotation and translation change with the twist.
StandardError StandardErrorOf(const Matrix6d& covariance,
                              const Eigen::Matrix<double, 3, 6>& rotation,
                              const Eigen::Matrix<double, 3, 6>& translation) {
  StandardError error;
  error.rotationDegrees =
      (rotation * covariance * rotation.transpose()).diagonal().cwiseSqrt() / kDegree;
  error.translationMm =
      (translation * covariance * translation.transpose()).diagonal().cwiseSqrt() / kMetresPerMm;
  return error;
}

Offset Tested(Offset offset, const Twist& difference, const Matrix6d& covariance, double freedom) {
  offset.p = HotellingTail(difference.dot(Ldlt(covariance).Solve(difference)), 6, freedom);
  return offset;
}

// @param between The rotation that is the difference.
TransformComparison CompareAxes(const Pose& other, const Pose& found, const Pose& between,
                                const StandardError& error, double t95) {
  const Eigen::Vector3d otherMm = 1e3 * other.translation();
  const Eigen::Vector3d foundMm = 1e3 * found.translation();
  const Eigen::Vector3d rotationDegrees = Log(between).head<3>() / kDegree;
  TransformComparison comparison;
  for (std::size_t i = 0; i < 3; ++i) {
    const auto axis = static_cast<Eigen::Index>(i);
    comparison.translation[i] = {otherMm[axis], foundMm[axis], otherMm[axis] - foundMm[axis],
                                 t95 * error.translationMm[axis]};
    comparison.rotation[i].difference = rotationDegrees[axis];
    comparison.rotation[i].half = t95 * error.rotationDegrees[axis];
  }
  comparison.isCompared = rotationDegrees.allFinite();
  return comparison;
}

}  // namespace

Eigen::MatrixXd FullCovariance(const Solution& solution, const Evidence& evidence) {
  Eigen::MatrixXd covariance =
      solution.inflation * solution.covariance +
      solution.byNuisances * evidence.nuisanceCovariance * solution.byNuisances.transpose();
  // The squares may have another size, or the trackers measure lengths wrongly, and then those of
  // the transforms as well.
  const double scale =
      std::hypot(std::sqrt(evidence.nuisanceCovariance.bottomRightCorner<1, 1>()(0, 0)),
                 solution.squareFactor - 1);
  const Eigen::Vector3d camera = scale * solution.Transform_Cam_Tc.translation();
  const Eigen::Vector3d chart = scale * (solution.Transform_Tr_Chart.linear().transpose() *
                                         solution.Transform_Tr_Chart.translation());
  covariance.block<3, 3>(3, 3) += camera * camera.transpose();
  if (solution.unknowns.mounting) {
    covariance.block<3, 3>(9, 9) += chart * chart.transpose();
  }
  return covariance;
}

Matrix6d CovarianceFromLens(const Solution& solution, const Evidence& evidence) {
  Eigen::MatrixXd covariance = evidence.nuisanceCovariance;
  covariance.bottomRightCorner<1, 1>().setZero();  // the scale
  const Eigen::MatrixXd byNuisances = solution.byNuisances.topRows<6>();
  return byNuisances * covariance * byNuisances.transpose();
}

StandardError StandardErrorOfLeftTwist(const Matrix6d& covariance, const Pose& pose) {
  Eigen::Matrix<double, 3, 6> rotation = Eigen::Matrix<double, 3, 6>::Zero();
  rotation.leftCols<3>().setIdentity();
  Eigen::Matrix<double, 3, 6> translation;
  translation << -Cross(pose.translation()), Eigen::Matrix3d::Identity();
  return StandardErrorOf(covariance, rotation, translation);
}

StandardError StandardErrorOfRightTwist(const Matrix6d& covariance, const Pose& pose) {
  Eigen::Matrix<double, 3, 6> rotation = Eigen::Matrix<double, 3, 6>::Zero();
  rotation.leftCols<3>() = pose.linear();
  Eigen::Matrix<double, 3, 6> translation = Eigen::Matrix<double, 3, 6>::Zero();
  translation.rightCols<3>() = pose.linear();
  return StandardErrorOf(covariance, rotation, translation);
}

Offset Between(const Pose& a, const Pose& b) {
  Offset offset;
  offset.offMm = (a.translation() - b.translation()).norm() / kMetresPerMm;
  offset.offDegrees = Log(a.inverse() * b).head<3>().norm() / kDegree;
  return offset;
}

Offset CompareCamTc(const Solution& solution, const Matrix6d& covariance, const Pose& other) {
  return Tested(Between(other, solution.Transform_Cam_Tc),
                Log(other * solution.Transform_Cam_Tc.inverse()), covariance,
                Freedom(solution.Used()));
}

Offset CompareTrChart(const Solution& solution, const Matrix6d& covariance, const Pose& other) {
  return Tested(Between(other, solution.Transform_Tr_Chart),
                Log(solution.Transform_Tr_Chart.inverse() * other), covariance,
                Freedom(solution.Used()));
}

TransformComparison CompareAxesCamTc(const Pose& other, const Pose& found,
                                     const StandardError& error, double t95) {
  return CompareAxes(other, found, other * found.inverse(), error, t95);
}

TransformComparison CompareAxesTrChart(const Pose& other, const Pose& found,
                                       const StandardError& error, double t95) {
  return CompareAxes(other, found, found.inverse() * other, error, t95);
}

// Both halves share both transforms: solved separately, most of a drift would disappear in the
// uncertainty between the two solutions.
std::optional<Offset> CompareHalves(const Evidence& evidence, const Solution& solution) {
  constexpr std::size_t kLeastInHalf = 6;  // photographs
  if (solution.Used() < 2 * kLeastInHalf) {
    return std::nullopt;
  }
  SolveOptions options;
  options.isFixed = true;
  options.first = solution.used;
  std::size_t middle = 0;
  for (std::size_t seen = 0; 2 * seen < solution.Used(); ++middle) {
    seen += solution.used[middle] ? 1 : 0;
  }
  std::optional<Offset> likelier;
  for (const Tracker tracker : {Tracker::kCamera, Tracker::kChart}) {
    Solution from = solution;
    from.unknowns.step = tracker;
    from.unknowns.before = middle;
    const std::optional<Solution> solved = Solve(evidence.loops, from, options);
    if (!solved) {
      continue;
    }
    const Matrix6d covariance = FullCovariance(*solved, evidence).bottomRightCorner<6, 6>();
    Offset offset = Tested(Between(solved->step, Pose::Identity()), Log(solved->step), covariance,
                           Freedom(solution.Used()) - 3);
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
  // The singular values of the mean rotation, the largest first: how much all rotations have in
  // common, for each axis.
  const Eigen::SelfAdjointEigenSolver<Eigen::Matrix3d> squares(mean.transpose() * mean);
  const Eigen::Vector3d common = squares.eigenvalues().reverse().cwiseMax(0).cwiseSqrt();
  const Eigen::Matrix3d axes = squares.eigenvectors().rowwise().reverse();
  Diversity diversity;
  diversity.amplification = common[0] < 1 ? 1 / std::sqrt(1 - common[0] * common[0])
                                          : std::numeric_limits<double>::infinity();
  // A rotation of the mounting about this axis looks almost like one of the camera in every
  // photograph.
  diversity.weakestAxisInChart = axes.col(0);

  // The same number of photographs again, rotated by an angle to either side about an axis, leaves
  // this axis its singular value and multiplies those of the other two by (1 + cos) / 2. So the
  // best axis is the one with the smallest. If even that is too large, half of the photographs are
  // rotated about the next axis: both are multiplied by (3 + cos) / 4.
  const double enough = std::sqrt(1 - 1 / (kGoodAmplification * kGoodAmplification));
  const auto degrees = [](double cosine) {
    return std::acos(std::clamp(cosine, -1.0, 1.0)) / kDegree;
  };
  diversity.axisInChart = axes.col(2);
  diversity.rotationDegrees = degrees(2 * enough / common[0] - 1);
  if (common[2] > enough) {
    diversity.axes = 2;
    diversity.rotationDegrees =
        std::max(diversity.rotationDegrees, degrees(4 * enough / common[1] - 3));
  }
  return diversity;
}

}  // namespace trackedcam::crosscheck
