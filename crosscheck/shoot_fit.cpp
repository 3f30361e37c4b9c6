#include "crosscheck/shoot_fit.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <utility>

#include <Eigen/Cholesky>

#include "crosscheck/reported_poses.h"
#include "crosscheck/solve.h"
#include "crosscheck/start.h"
#include "crosscheck/symmetric.h"

namespace trackedcam::crosscheck {
namespace {

constexpr int kMostFitSteps = 20;
constexpr double kMostRotation = 0.02;  // radians: a larger residual needs a start

using LensColumns = Eigen::Matrix<double, kCornerParameters, 5>;

// The parameters of the corner model by the change of the lens.
LensColumns ByLensChange(const Lens& lens) {
  LensColumns by = LensColumns::Zero();
  by(0, 0) = lens.fx;
  by(1, 0) = lens.fy;
  by(2, 1) = by(3, 2) = by(4, 3) = by(5, 4) = 1;
  return by;
}

std::vector<Eigen::Index> FreedColumns(const Freed& freed) {
  std::vector<Eigen::Index> columns;
  if (freed.focal) {
    columns.push_back(0);
  }
  if (freed.centre) {
    columns.insert(columns.end(), {1, 2});
  }
  if (freed.distortion) {
    columns.insert(columns.end(), {3, 4});
  }
  return columns;
}

}  // namespace

// The normal equations of a step: first what the calibration knows with an uncertainty, by
// independent variables of unit variance; then what is freed.
struct NewShoot::Sums {
  Eigen::MatrixXd normal;
  Eigen::VectorXd right;
  Eigen::MatrixXd loops;  // the part of the normal matrix that is not of the corners
  double squares = 0;
  std::vector<std::pair<Eigen::MatrixXd, Twist>> rows;  // for each loop, weighted
};

NewShoot::NewShoot(const Calibration& calibration, const std::vector<Photograph>& photographs,
                   const std::optional<Board>& otherBoard)
    : old_(calibration),
      photographs_(photographs),
      board_(otherBoard.value_or(calibration.board)),
      points_(board_.Points()),
      isOtherBoard_(otherBoard.has_value()) {
  for (const Photograph& photograph : photographs_) {
    if (photograph.corners.size() != points_.size()) {
      throw std::invalid_argument(photograph.name + " has " +
                                  std::to_string(photograph.corners.size()) +
                                  " corners, expected " + std::to_string(points_.size()) + ".");
    }
  }
  Eigen::MatrixXd covariance = old_.covariance;
  if (isOtherBoard_) {  // whose squares have another error
    const Eigen::Index size = covariance.rows();
    covariance.conservativeResizeLike(Eigen::MatrixXd::Zero(size + 1, size + 1));
    covariance(size, size) = old_.scaleUncertainty * old_.scaleUncertainty;
  }
  root_ = SquareRoot(covariance);
  cornerNoise_ = old_.cornerNoisePixels;
  const auto seeAll = [&] {
    seen_.clear();
    for (std::size_t i = 0; i < photographs_.size(); ++i) {
      seen_.push_back(See(i, old_.lens));
    }
  };
  seeAll();
  MeasureCornerNoise();
  seeAll();
  for (std::size_t i = 0; i < seen_.size(); ++i) {
    if (seen_[i]) {
      usable_.push_back(i);
      oldLoops_.push_back(seen_[i]->loop);
    }
  }
}

// New photographs may be less sharp. Only what no lens explains is noise.
void NewShoot::MeasureCornerNoise() {
  double squares = 0;
  double freedom = -5;
  Eigen::Matrix<double, 5, 5> information = Eigen::Matrix<double, 5, 5>::Zero();
  LensChangeVector towards = LensChangeVector::Zero();
  const LensColumns by = ByLensChange(old_.lens);
  for (const std::optional<Seen>& seen : seen_) {
    if (seen) {
      squares += seen->squares;
      freedom += 2 * static_cast<double>(points_.size()) - 6;
      information += by.transpose() * seen->equations.information * by;
      towards += by.transpose() * seen->equations.towards;
    }
  }
  const double explained = towards.dot(information.ldlt().solve(towards));
  if (freedom > 0 && std::isfinite(explained)) {
    cornerNoise_ = std::max(cornerNoise_, std::sqrt(std::max(0.0, squares - explained) / freedom));
  }
}

Lens NewShoot::LensWith(const LensChangeVector& change) const {
  Lens lens = old_.lens;
  lens.fx *= 1 + change[0];
  lens.fy *= 1 + change[0];
  lens.cx += change[1];
  lens.cy += change[2];
  lens.k1 += change[3];
  lens.k2 += change[4];
  return lens;
}

std::optional<NewShoot::Seen> NewShoot::See(std::size_t photograph, const Lens& lens) const {
  const Photograph& row = photographs_[photograph];
  const RowForm form = {old_.invertTrackerQuaternions, old_.quaternionAxes};
  const bool areFinite = std::all_of(row.corners.begin(), row.corners.end(),
                                     [](const auto& corner) { return corner.allFinite(); });
  const std::optional<Pose> Transform_Tc_Tr = TransformOfRow(row, form);
  if (!areFinite || !Transform_Tc_Tr) {
    return std::nullopt;
  }
  const std::optional<ChartPose> pose = FindChartPose(lens, points_, row.corners);
  if (!pose) {
    return std::nullopt;
  }
  Seen seen;
  seen.equations = ModelEquationsAt(*pose, {lens, board_}, row.corners);
  seen.squares = pose->equations.squares;
  seen.loop.photographs = {photograph};
  seen.loop.Transform_Cam_Chart = pose->Transform_Cam_Chart;
  seen.loop.Transform_Tc_Tr = *Transform_Tc_Tr;
  seen.loop.cornerCovariance = cornerNoise_ * cornerNoise_ * Ldlt(pose->equations.byPose).Inverse();
  const bool isFinite = seen.loop.cornerCovariance.allFinite() && seen.equations.pose.allFinite();
  return isFinite ? std::optional<Seen>(seen) : std::nullopt;
}

std::optional<std::vector<NewShoot::Seen>> NewShoot::SeeAll(const std::vector<std::size_t>& used,
                                                            const Lens& lens) const {
  std::vector<Seen> all;
  for (const std::size_t photograph : used) {
    const std::optional<Seen> seen = See(photograph, lens);
    if (!seen) {
      return std::nullopt;
    }
    all.push_back(*seen);
  }
  return all;
}

ShootFit NewShoot::NothingFreed() const {
  return {};
}

Pose NewShoot::PredictedOf(const Loop& loop, const ShootFit& fit) const {
  return old_.Transform_Cam_Tc * fit.cameraMove * loop.Transform_Tc_Tr * fit.chartMove *
         old_.Transform_Tr_Chart;
}

Twist NewShoot::ResidualOf(const Loop& loop, const ShootFit& fit) const {
  return Log(loop.Transform_Cam_Chart * PredictedOf(loop, fit).inverse());
}

// Moves may be large, and the steps converge from nearby only: begin with the one that a single
// photograph shows, if it fits the others better than no move.
ShootFit NewShoot::Start(const std::vector<Seen>& seen, const Freed& freed) const {
  ShootFit best;
  const auto distance = [&](const ShootFit& fit) {
    double sum = 0;
    for (const Seen& photograph : seen) {
      sum += ResidualOf(photograph.loop, fit).norm();
    }
    return sum;
  };
  double least = distance(best);
  const auto consider = [&](const ShootFit& fit) {
    if (const double other = distance(fit); other < least) {
      least = other;
      best = fit;
    }
  };
  const bool isNear = std::all_of(seen.begin(), seen.end(), [&](const Seen& photograph) {
    return ResidualOf(photograph.loop, ShootFit()).norm() < kMostRotation;
  });
  if (isNear) {
    return best;
  }
  for (const Seen& photograph : seen) {
    const Loop& loop = photograph.loop;
    ShootFit fit;
    if (freed.camera) {
      fit.cameraMove = old_.Transform_Cam_Tc.inverse() * loop.Transform_Cam_Chart *
                       (loop.Transform_Tc_Tr * old_.Transform_Tr_Chart).inverse();
      consider(fit);
    }
    fit = {};
    if (freed.chart) {
      fit.chartMove = (old_.Transform_Cam_Tc * loop.Transform_Tc_Tr).inverse() *
                      loop.Transform_Cam_Chart * old_.Transform_Tr_Chart.inverse();
      consider(fit);
    }
  }
  if (freed.camera && freed.chart) {
    Loops loops;
    for (const Seen& photograph : seen) {
      loops.push_back(photograph.loop);
    }
    Evidence evidence;
    evidence.corners.board = points_;
    if (const auto start = FindStart(loops, BoardDistance(evidence), 20)) {
      ShootFit fit;
      fit.cameraMove = old_.Transform_Cam_Tc.inverse() * start->Transform_Cam_Tc;
      fit.chartMove = start->Transform_Tr_Chart * old_.Transform_Tr_Chart.inverse();
      consider(fit);
    }
  }
  return best;
}

NewShoot::Sums NewShoot::Sum(const std::vector<Seen>& seen, const ShootFit& fit,
                             double noise) const {
  const Eigen::Index known = root_.rows();
  const auto lensParameters = static_cast<Eigen::Index>(old_.parameters.size());
  const Eigen::Index freed = fit.freed.Count();
  const std::vector<Eigen::Index> lensColumns = FreedColumns(fit.freed);
  const auto lensCount = static_cast<Eigen::Index>(lensColumns.size());
  const LensColumns byChange = ByLensChange(old_.lens);
  const Pose Transform_Cam_Tc = old_.Transform_Cam_Tc * fit.cameraMove;

  // The parameters of the corner model by all unknowns.
  Eigen::MatrixXd model = Eigen::MatrixXd::Zero(kCornerParameters, known + freed);
  for (Eigen::Index i = 0; i < lensParameters; ++i) {
    const Eigen::Index parameter = old_.parameters[static_cast<std::size_t>(i)];
    // Another board has another shape.
    if (!isOtherBoard_ || parameter < kAllLensParameters) {
      model.row(parameter).head(known) = root_.row(i);
    }
  }
  for (Eigen::Index i = 0; i < lensCount; ++i) {
    model.col(known + freed - lensCount + i) =
        byChange.col(lensColumns[static_cast<std::size_t>(i)]);
  }

  Sums sums;
  sums.normal = Eigen::MatrixXd::Zero(known + freed, known + freed);
  sums.loops = sums.normal;
  sums.loops.topLeftCorner(known, known).setIdentity();
  sums.right = Eigen::VectorXd::Zero(known + freed);
  const double cornerWeight = 1 / (cornerNoise_ * cornerNoise_ * old_.cornerInflation);
  for (const Seen& photograph : seen) {
    const Loop& loop = photograph.loop;
    const Pose Transform_Cam_Tr = Transform_Cam_Tc * loop.Transform_Tc_Tr;
    // The prediction and, with the other sign, the pose that the corners show.
    Eigen::MatrixXd design = -photograph.equations.pose * model;
    design.leftCols(known) += root_.middleRows<6>(lensParameters + 1);
    design.leftCols(known) += Adjoint(Transform_Cam_Tr * fit.chartMove * old_.Transform_Tr_Chart) *
                              root_.middleRows<6>(lensParameters + 7);
    design.bottomLeftCorner(3, known) -= loop.Transform_Cam_Chart.translation() *
                                         root_.row(isOtherBoard_ ? known - 1 : lensParameters);
    Eigen::Index next = known;
    if (fit.freed.camera) {
      design.middleCols<6>(next) += Adjoint(old_.Transform_Cam_Tc);
      next += 6;
    }
    if (fit.freed.chart) {
      design.middleCols<6>(next) += Adjoint(Transform_Cam_Tr);
    }
    const NoiseCarriers carriers = CarriersOf(Transform_Cam_Tc, Transform_Cam_Tr);
    const Matrix6d covariance = noise * (old_.rotationVariance * carriers.rotation +
                                         old_.translationVariance * carriers.translation) +
                                loop.cornerCovariance;
    const Eigen::LLT<Matrix6d> factor(covariance);
    const Eigen::MatrixXd rows = factor.matrixL().solve(design);
    const Twist residual = factor.matrixL().solve(ResidualOf(loop, fit));
    sums.loops += rows.transpose() * rows;
    sums.right += rows.transpose() * residual;
    sums.squares += residual.squaredNorm();
    sums.rows.emplace_back(rows, residual);

    sums.normal += cornerWeight * model.transpose() * photograph.equations.information * model;
    sums.right += cornerWeight * model.transpose() * photograph.equations.towards;
    sums.squares += cornerWeight * photograph.squares;
  }
  sums.normal += sums.loops;
  return sums;
}

std::optional<ShootFit> NewShoot::Fit(const std::vector<std::size_t>& used, const Freed& freed,
                                      double noise) const {
  std::vector<Seen> seen;
  for (const std::size_t photograph : used) {
    seen.push_back(*seen_[photograph]);
  }
  ShootFit fit = Start(seen, freed);
  fit.freed = freed;
  const Eigen::Index known = root_.rows();
  const Eigen::Index count = freed.Count();
  const std::vector<Eigen::Index> lensColumns = FreedColumns(freed);
  for (int step = 0; step < kMostFitSteps; ++step) {
    const Sums sums = Sum(seen, fit, noise);
    const Eigen::VectorXd scale = sums.normal.diagonal().cwiseSqrt().cwiseInverse();
    const Eigen::MatrixXd scaled = scale.asDiagonal() * sums.normal * scale.asDiagonal();
    const Eigen::LDLT<Eigen::MatrixXd> solver(scaled);
    if (!scale.allFinite() || !(solver.vectorD().minCoeff() > 1e-11)) {
      return std::nullopt;
    }
    const Eigen::VectorXd change =
        scale.asDiagonal() * solver.solve(scale.asDiagonal() * sums.right);
    if (!change.allFinite()) {
      return std::nullopt;
    }
    fit.squares = sums.squares - change.dot(sums.right);
    fit.loopSquares = change.head(known).squaredNorm();
    for (const auto& [rows, residual] : sums.rows) {
      fit.loopSquares += (residual - rows * change).squaredNorm();
    }
    const Eigen::VectorXd own = change.tail(count);
    const double moved = own.dot(sums.normal.bottomRightCorner(count, count) * own);
    const Eigen::MatrixXd inverse =
        scale.asDiagonal() * solver.solve(Eigen::MatrixXd::Identity(scaled.rows(), scaled.cols())) *
        scale.asDiagonal();
    fit.covariance = inverse.bottomRightCorner(count, count);
    fit.loopFreedom = 6 * static_cast<double>(used.size()) + static_cast<double>(known) -
                      inverse.cwiseProduct(sums.loops).sum();
    if (count == 0) {
      return fit;
    }
    Eigen::Index next = 0;
    if (freed.camera) {
      fit.cameraMove = Exp(own.segment<6>(next)) * fit.cameraMove;
      next += 6;
    }
    if (freed.chart) {
      fit.chartMove = Exp(own.segment<6>(next)) * fit.chartMove;
      next += 6;
    }
    for (const Eigen::Index column : lensColumns) {
      fit.lensChange[column] += own[next++];
    }
    if (moved < 1e-6) {
      return fit;
    }
    if (!lensColumns.empty()) {
      const Lens lens = LensWith(fit.lensChange);
      const auto again = lens.fx > 0 && lens.fy > 0 ? SeeAll(used, lens) : std::nullopt;
      if (!again) {
        return std::nullopt;
      }
      seen = *again;
    }
  }
  return fit;
}

std::vector<Verified> NewShoot::Compare(const ShootFit& fit,
                                        const std::vector<std::size_t>& used) const {
  const Lens newLens = LensWith(fit.lensChange);
  const auto predict = [&](const Pose& predicted, const Lens& lens,
                           const std::vector<Eigen::Vector2d>& corners,
                           std::vector<Eigen::Vector2d>& pixels) {
    double squares = 0;
    for (std::size_t i = 0; i < points_.size(); ++i) {
      const Eigen::Vector3d point = predicted * points_[i];
      pixels.push_back(point.z() > 1e-6
                           ? Project(lens, point)
                           : Eigen::Vector2d::Constant(std::numeric_limits<double>::quiet_NaN()));
      squares += (pixels.back() - corners[i]).squaredNorm();
    }
    return std::sqrt(squares / static_cast<double>(points_.size()));
  };
  std::vector<Verified> all;
  for (std::size_t i = 0; i < photographs_.size(); ++i) {
    Verified verified;
    verified.name = photographs_[i].name;
    verified.used = std::find(used.begin(), used.end(), i) != used.end();
    verified.oldPixels = verified.newPixels = verified.oldMm = verified.oldDegrees =
        std::numeric_limits<double>::quiet_NaN();
    if (seen_[i]) {
      const Loop& loop = seen_[i]->loop;
      const std::vector<Eigen::Vector2d>& corners = photographs_[i].corners;
      verified.oldPixels =
          predict(PredictedOf(loop, {}), old_.lens, corners, verified.oldPredicted);
      verified.newPixels = predict(PredictedOf(loop, fit), newLens, corners, verified.newPredicted);
      const Pose camera = old_.Transform_Cam_Tc.inverse() * loop.Transform_Cam_Chart *
                          (loop.Transform_Tc_Tr * old_.Transform_Tr_Chart).inverse();
      const Pose chart = (old_.Transform_Cam_Tc * loop.Transform_Tc_Tr).inverse() *
                         loop.Transform_Cam_Chart * old_.Transform_Tr_Chart.inverse();
      verified.oldMm = 1e3 * std::min(camera.translation().norm(), chart.translation().norm());
      verified.oldDegrees = RotationDegrees(camera);
    }
    all.push_back(verified);
  }
  return all;
}

}  // namespace trackedcam::crosscheck
