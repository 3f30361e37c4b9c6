#include "crosscheck/tracker_flaws.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <optional>

#include <Eigen/Cholesky>
#include <Eigen/Eigenvalues>

#include "crosscheck/statistics.h"
#include "crosscheck/symmetric.h"

namespace trackedcam::crosscheck {
namespace {

// The positions of all trackers: their centre, and their root mean square distance from it.
struct Volume {
  Eigen::Vector3d centre = Eigen::Vector3d::Zero();
  double size = 0;
};

Volume VolumeOf(const Loops& loops) {
  Volume volume;
  const auto count = 2.0 * static_cast<double>(loops.size());
  double squares = 0;
  for (const Loop& loop : loops) {
    for (const Pose& pose :
         {loop.Transform_Base_Tc, loop.Transform_Base_Tc * loop.Transform_Tc_Tr}) {
      volume.centre += pose.translation() / count;
      squares += pose.translation().squaredNorm() / count;
    }
  }
  volume.size = std::sqrt(std::max(1e-6, squares - volume.centre.squaredNorm()));
  return volume;
}

Columns OfTranslation(const Eigen::Matrix3Xd& translation) {
  Columns columns = Columns::Zero(6, translation.cols());
  columns.bottomRows<3>() = translation;
  return columns;
}

// What the tracking system reports in its own frame, seen from the camera.
Eigen::Matrix3d FromBase(const Loop& loop, const Solution& solution) {
  return solution.Transform_Cam_Tc.linear() * loop.Transform_Base_Tc.linear().transpose();
}

// A mount that gives way under gravity moves what it holds in a direction that is constant in
// frame Base. That of the chart does the same.
Columns BySag(const Loop& loop, const Solution& solution) {
  return OfTranslation(FromBase(loop, solution));
}

// Products of two coordinates.
Eigen::Matrix<double, 1, 6> Squares(const Eigen::Vector3d& position, const Volume& volume) {
  const Eigen::Vector3d p = (position - volume.centre) / volume.size;
  Eigen::Matrix<double, 1, 6> squares;
  squares << p.x() * p.x(), p.y() * p.y(), p.z() * p.z(), p.x() * p.y(), p.y() * p.z(),
      p.z() * p.x();
  return squares;
}

// Positions that are off by a quadratic function of the position.
Columns ByBend(const Loop& loop, const Solution& solution, const Volume& volume) {
  const Pose Transform_Base_Tr = loop.Transform_Base_Tc * loop.Transform_Tc_Tr;
  const Eigen::Matrix<double, 1, 6> between = Squares(Transform_Base_Tr.translation(), volume) -
                                              Squares(loop.Transform_Base_Tc.translation(), volume);
  const Eigen::Matrix3d fromBase = FromBase(loop, solution);
  Eigen::Matrix3Xd translation(3, 18);
  for (Eigen::Index k = 0; k < 6; ++k) {
    translation.middleCols<3>(3 * k) = between[k] * fromBase;
  }
  return OfTranslation(translation);
}

// Errors that follow the roll and the tilt of the chart in front of the camera.
Columns ByRotation(const Loop& loop) {
  const Eigen::Matrix3d& rotation = loop.Transform_Cam_Chart.linear();
  const double roll = std::atan2(rotation(1, 0), rotation(0, 0));
  Columns columns(6, 24);
  Eigen::Index k = 0;
  for (const double along : {rotation(0, 2), rotation(1, 2), std::cos(roll), std::sin(roll)}) {
    columns.middleCols<6>(6 * k) = along * Matrix6d::Identity();
    ++k;
  }
  return columns;
}

// Poses that are late, or early: what they miss of the motion to the next row, or from the one
// before. Nothing is known of it if that row is too far away in time.
Columns ByDelay(const Loops& loops, std::size_t index, bool isLate, const Solution& solution) {
  Columns columns = Columns::Zero(6, 1);
  if (isLate ? index + 1 == loops.size() : index == 0) {
    return columns;
  }
  const Loop& before = loops[isLate ? index : index - 1];
  const Loop& after = loops[isLate ? index + 1 : index];
  const double seconds = after.seconds - before.seconds;
  if (seconds > 0 && seconds <= kMostSecondsOfMotion) {
    columns = Adjoint(solution.Transform_Cam_Tc) *
              Log(after.Transform_Tc_Tr * before.Transform_Tc_Tr.inverse()) / seconds;
  }
  return columns;
}

// Columns that explain a part of the residuals.
struct Explanation {
  Eigen::VectorXd value;       // of each column
  Eigen::MatrixXd covariance;  // of the values
  double gain = 0;             // of the sum of squares
  int elements = 0;            // that were chosen freely
};

constexpr double kLeastLeft = 1e-3;  // of a column; less belongs to the transforms

Explanation ByAll(const Eigen::MatrixXd& left, const Eigen::VectorXd& towards) {
  const Eigen::SelfAdjointEigenSolver<Eigen::MatrixXd> eigen(left);
  const Eigen::VectorXd turned = eigen.eigenvectors().transpose() * towards;
  Eigen::VectorXd value = Eigen::VectorXd::Zero(towards.size());
  Eigen::VectorXd variance = value;
  Explanation all;
  for (Eigen::Index k = 0; k < towards.size(); ++k) {
    if (eigen.eigenvalues()[k] > kLeastLeft) {
      value[k] = turned[k] / eigen.eigenvalues()[k];
      variance[k] = 1 / eigen.eigenvalues()[k];
      all.gain += turned[k] * value[k];
      ++all.elements;
    }
  }
  all.value = eigen.eigenvectors() * value;
  all.covariance = eigen.eigenvectors() * variance.asDiagonal() * eigen.eigenvectors().transpose();
  return all;
}

// The one that explains most.
Explanation ByOne(const Eigen::MatrixXd& left, const Eigen::VectorXd& towards) {
  Explanation best;
  best.value = Eigen::VectorXd::Zero(towards.size());
  best.covariance = Eigen::MatrixXd::Zero(towards.size(), towards.size());
  for (Eigen::Index k = 0; k < towards.size(); ++k) {
    const double gain = towards[k] * towards[k] / left(k, k);
    if (left(k, k) > kLeastLeft && gain > best.gain) {
      best.gain = gain;
      best.elements = 1;
      best.value.setZero();
      best.value[k] = towards[k] / left(k, k);
      best.covariance.setZero();
      best.covariance(k, k) = 1 / left(k, k);
    }
  }
  return best;
}

// Of all columns, each in units of its own size.
struct Equations {
  Eigen::VectorXd scale;
  Eigen::MatrixXd left;     // by each other, without what the unknowns take up
  Eigen::VectorXd towards;  // by the residuals
  Eigen::MatrixXd shared;   // by the unknowns, not in these units
  double squares = 0;       // of all residuals
};

Equations EquationsOf(const ColumnsOf& columnsOf, const Loops& loops, const Solution& solution) {
  const Eigen::Index size = columnsOf(0).cols();
  const Eigen::Index unknowns = solution.covariance.rows();
  Eigen::MatrixXd information = Eigen::MatrixXd::Zero(size, size);
  Eigen::VectorXd towards = Eigen::VectorXd::Zero(size);
  Eigen::MatrixXd sharedByNuisances = Eigen::MatrixXd::Zero(size, solution.nuisanceShift.size());
  Equations equations;
  equations.shared = Eigen::MatrixXd::Zero(size, unknowns);
  equations.squares = solution.nuisanceShift.squaredNorm();
  for (std::size_t i = 0; i < loops.size(); ++i) {
    if (!solution.used[i]) {
      continue;
    }
    const Columns columns = columnsOf(i);
    const Eigen::MatrixXd weighted =
        columns.transpose() * Inverse(CovarianceOf(loops[i], solution, solution.noise));
    information += weighted * columns;
    equations.shared += weighted * DesignOf(loops[i], i, solution);
    sharedByNuisances += weighted * OwnOfNuisances(loops[i], i, solution);
    towards += weighted * Remaining(loops[i], i, solution);
    equations.squares += solution.disagreement[i];
  }
  // Some directions are those of the transforms or of the lens, which have taken them up.
  const Eigen::MatrixXd left =
      information - equations.shared * solution.covariance * equations.shared.transpose() -
      sharedByNuisances * solution.nuisanceLeft * sharedByNuisances.transpose();
  equations.scale = information.diagonal().cwiseMax(1e-30).cwiseSqrt().cwiseInverse();
  equations.left = equations.scale.asDiagonal() * left * equations.scale.asDiagonal();
  equations.towards = equations.scale.cwiseProduct(towards);
  return equations;
}

TrackerFlawTest Test(TrackerFlaw flaw, const ColumnsOf& columnsOf, const Loops& loops,
                     const Solution& solution) {
  const auto [scale, left, towards, shared, squares] = EquationsOf(columnsOf, loops, solution);
  const double allSquares = squares;  // lambdas of C++17 cannot capture structured bindings
  const Eigen::Index unknowns = solution.covariance.rows();
  TrackerFlawTest test;
  test.flaw = flaw;
  Explanation best = ByAll(left, towards);
  const auto pOf = [&](const Explanation& explanation) {
    const double freedom = 6.0 * static_cast<double>(solution.Used()) -
                           static_cast<double>(unknowns) - explanation.elements;
    const double rest = allSquares - explanation.gain;
    return explanation.elements > 0 && freedom > 0 && rest > 0
               ? HotellingTail(explanation.gain * freedom / rest, explanation.elements, freedom)
               : 1;
  };
  test.p = pOf(best);
  if (left.cols() > 1) {
    // A flaw that is mostly one of the columns is seen more surely in that one alone.
    const Explanation one = ByOne(left, towards);
    const double pOfOne = std::min(1.0, static_cast<double>(left.cols()) * pOf(one));
    best = pOfOne < test.p ? one : best;
    test.p = std::min(1.0, 2 * std::min(pOfOne, test.p));  // two were tried
  }
  const Eigen::VectorXd flawed = scale.cwiseProduct(best.value);
  double mm = 0;
  double degrees = 0;
  for (std::size_t i = 0; i < loops.size(); ++i) {
    test.byLoop.emplace_back(columnsOf(i) * flawed);
    if (solution.used[i]) {
      degrees += test.byLoop.back().head<3>().squaredNorm();
      mm += test.byLoop.back().tail<3>().squaredNorm();
    }
  }
  const auto used = static_cast<double>(solution.Used());
  test.mm = 1e3 * std::sqrt(mm / used);
  test.degrees = std::sqrt(degrees / used) / kDegree;
  if (flaw == TrackerFlaw::kDelay) {
    test.delaySeconds = flawed[0];
    test.delayError = best.elements > 0 ? scale[0] * std::sqrt(best.covariance(0, 0)) : HUGE_VAL;
  }
  const Eigen::MatrixXd byFlaw = -solution.covariance * shared.transpose() * scale.asDiagonal();
  test.moved = byFlaw * best.value;
  test.covarianceOfMoved = byFlaw * best.covariance * byFlaw.transpose();
  return test;
}

}  // namespace

ColumnFit FitColumns(const ColumnsOf& columnsOf, const Loops& loops, const Solution& solution) {
  const Equations equations = EquationsOf(columnsOf, loops, solution);
  const Explanation all = ByAll(equations.left, equations.towards);
  const auto scale = equations.scale.asDiagonal();
  return {scale * all.value, scale * all.covariance * scale, all.elements == all.value.size()};
}

std::optional<double> DelayKnownToSeconds(const Loops& loops, const Solution& solution) {
  constexpr double kUseful = 0.02;  // less accurately it might as well not be known
  double least = HUGE_VAL;
  for (const bool isLate : {true, false}) {
    const auto columnsOf = [&](std::size_t i) { return ByDelay(loops, i, isLate, solution); };
    least = std::min(least, Test(TrackerFlaw::kDelay, columnsOf, loops, solution).delayError);
  }
  const double known = StudentHalfWidth95(Freedom(solution.Used())) * least;
  return known <= kUseful ? std::optional(known) : std::nullopt;
}

std::vector<TrackerFlawTest> TestTrackers(const Loops& loops, const Solution& solution) {
  const Volume volume = VolumeOf(loops);
  const auto test = [&](TrackerFlaw flaw, const ColumnsOf& columnsOf) {
    return Test(flaw, columnsOf, loops, solution);
  };
  return {
      test(TrackerFlaw::kSag, [&](std::size_t i) { return BySag(loops[i], solution); }),
      test(TrackerFlaw::kBentVolume,
           [&](std::size_t i) { return ByBend(loops[i], solution, volume); }),
      test(TrackerFlaw::kPoseDependent, [&](std::size_t i) { return ByRotation(loops[i]); }),
      test(TrackerFlaw::kDelay, [&](std::size_t i) { return ByDelay(loops, i, true, solution); }),
      test(TrackerFlaw::kDelay, [&](std::size_t i) { return ByDelay(loops, i, false, solution); }),
  };
}

}  // namespace trackedcam::crosscheck
