#include "crosscheck/uncertainty.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include <Eigen/Cholesky>
#include <Eigen/Eigenvalues>

#include "crosscheck/chart_pose.h"
#include "crosscheck/solve.h"
#include "crosscheck/statistics.h"
#include "crosscheck/twist.h"

namespace trackedcam::crosscheck {
namespace {

constexpr double kMetresPerMm = 1e-3;
constexpr double kGoodAmplification = 3;

StandardError FromDerivatives(const Matrix6d& covariance, const Eigen::Matrix<double, 3, 6>& turn,
                              const Eigen::Matrix<double, 3, 6>& shift) {
  StandardError error;
  error.rotationDegrees = (turn * covariance * turn.transpose()).diagonal().cwiseSqrt() / kDegree;
  error.translationMm =
      (shift * covariance * shift.transpose()).diagonal().cwiseSqrt() / kMetresPerMm;
  return error;
}

Offset Tested(Offset offset, const Twist& difference, const Matrix6d& covariance, double freedom) {
  offset.p = HotellingTail(difference.dot(covariance.ldlt().solve(difference)), 6, freedom);
  return offset;
}

// Points at a sixth, a half and five sixths of the picture's width and height.
std::vector<Eigen::Vector3d> PointsAt(double distance, const Lens& lens) {
  std::vector<Eigen::Vector3d> points;
  for (const double x : {1.0, 3.0, 5.0}) {
    for (const double y : {1.0, 3.0, 5.0}) {
      if (const auto ray = Ray(lens, {x / 6 * lens.width, y / 6 * lens.height})) {
        points.emplace_back(distance * ray->homogeneous());
      }
    }
  }
  return points;
}

double LargestVariance(const Eigen::Matrix2d& covariance) {
  const double half = 0.5 * covariance.trace();
  return half + std::sqrt(std::max(0.0, half * half - covariance.determinant()));
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
  diversity.axisInChart = axes.col(2);
  diversity.rotationDegrees = turn(2 * enough / common[0] - 1);
  if (common[2] > enough) {
    diversity.axes = 2;
    diversity.rotationDegrees =
        std::max(diversity.rotationDegrees, turn(4 * enough / common[1] - 3));
  }
  return diversity;
}

OnScreen OnScreenAt(double distanceMetres, const Evidence& evidence, const Solution& solution,
                    const std::optional<Pose>& library) {
  const std::vector<Eigen::Vector3d> points = PointsAt(distanceMetres, evidence.lens);
  const Matrix6d noise = solution.covariance.topLeftCorner<6, 6>();
  const Matrix6d byLens = solution.byLens.topRows<6>();
  double both = 0;
  double transform = 0;
  double lens = 0;
  double apart = 0;
  for (const Eigen::Vector3d& point : points) {
    const Projection seen = ProjectWithDerivatives(evidence.lens, point);
    Eigen::Matrix<double, 2, 6> byTwist;
    byTwist << -seen.byPoint * Cross(point), seen.byPoint;
    // The lens moves the picture itself and, through the solve, the transform.
    const Eigen::Matrix<double, 2, 6> through = byTwist * byLens;
    const Eigen::Matrix<double, 2, 6> together = through + seen.byLens;
    const Eigen::Matrix2d own = byTwist * noise * byTwist.transpose();
    const Matrix6d& lensCovariance = evidence.lensCovariance;
    both += LargestVariance(own + together * lensCovariance * together.transpose());
    transform += LargestVariance(own + through * lensCovariance * through.transpose());
    lens += LargestVariance(seen.byLens * lensCovariance * seen.byLens.transpose());
    if (library) {
      const Eigen::Vector3d other = *library * (solution.Transform_Cam_Tc.inverse() * point);
      apart +=
          other.z() > 0 ? (Project(evidence.lens, other) - seen.pixel).squaredNorm() : HUGE_VAL;
    }
  }
  const auto count = static_cast<double>(points.size());
  const double t95 = StudentHalfWidth95(Freedom(solution));
  OnScreen onScreen;
  onScreen.distanceMetres = distanceMetres;
  onScreen.pixels = t95 * std::sqrt(both / count);
  onScreen.fromTransform = t95 * std::sqrt(transform / count);
  onScreen.fromLens = t95 * std::sqrt(lens / count);
  if (library) {
    onScreen.libraryApart = std::sqrt(apart / count);
  }
  return onScreen;
}

std::vector<OnScreen> OnScreenAtAll(const Evidence& evidence, const Solution& solution,
                                    const std::optional<Pose>& library) {
  std::vector<OnScreen> all;
  for (const double distance : {0.5, 1.0, 2.0, 5.0, 10.0}) {
    all.push_back(OnScreenAt(distance, evidence, solution, library));
  }
  return all;
}

}  // namespace trackedcam::crosscheck
