#include "crosscheck/calibration_of.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include <Eigen/Cholesky>

namespace trackedcam::crosscheck {
namespace {

// Corners in one photograph share errors, such as those of a blurred edge. The photographs then
// disagree about the lens by more than the noise of single corners.
double CornerInflation(const CornerFit& fit) {
  const auto count = static_cast<Eigen::Index>(fit.parameters.size());
  Eigen::MatrixXd information = Eigen::MatrixXd::Zero(count, count);
  Eigen::MatrixXd scatter = Eigen::MatrixXd::Zero(count, count);
  double photographs = 0;
  for (const std::optional<ModelEquations>& equations : fit.equations) {
    if (!equations) {
      continue;
    }
    Eigen::VectorXd towards(count);
    for (Eigen::Index i = 0; i < count; ++i) {
      towards[i] = equations->towards[fit.parameters[static_cast<std::size_t>(i)]];
      for (Eigen::Index j = 0; j < count; ++j) {
        information(i, j) += equations->information(fit.parameters[static_cast<std::size_t>(i)],
                                                    fit.parameters[static_cast<std::size_t>(j)]);
      }
    }
    scatter += towards * towards.transpose();
    ++photographs;
  }
  const auto parameters = static_cast<double>(count);
  const Eigen::VectorXd scale = information.diagonal().cwiseSqrt().cwiseInverse();
  if (!(photographs > parameters) || !scale.allFinite()) {
    return 1;
  }
  const Eigen::MatrixXd scaled = scale.asDiagonal() * information * scale.asDiagonal();
  const Eigen::MatrixXd ratio =
      scaled.ldlt().solve(scale.asDiagonal() * scatter * scale.asDiagonal());
  const double expected =
      fit.noisePixels * fit.noisePixels * parameters * (photographs - 1) / photographs;
  const double inflation = ratio.trace() / expected;
  return std::isfinite(inflation) ? std::max(1.0, inflation) : 1;
}

}  // namespace

std::optional<Calibration> CalibrationOf(const Observations& observations, const Evidence& evidence,
                                         const Solution& solution) {
  if (solution.unknowns.step || !solution.unknowns.mounting) {
    return std::nullopt;
  }
  Calibration calibration;
  calibration.lens = evidence.corners.model.lens;
  calibration.board = evidence.corners.model.board;
  calibration.board.square *= solution.squareFactor;
  calibration.square = observations.square;
  calibration.Transform_Cam_Tc = solution.Transform_Cam_Tc;
  calibration.Transform_Tr_Chart = solution.Transform_Tr_Chart;
  calibration.parameters = evidence.corners.parameters;

  const Eigen::MatrixXd& nuisances = evidence.nuisanceCovariance;
  const Eigen::Index nuisanceCount = nuisances.rows();
  const Eigen::Index unknowns = solution.covariance.rows();
  Eigen::MatrixXd joint(nuisanceCount + unknowns, nuisanceCount + unknowns);
  const Eigen::MatrixXd cross = solution.byNuisances * nuisances;
  joint << nuisances, cross.transpose(), cross,
      solution.inflation * solution.covariance + cross * solution.byNuisances.transpose();
  // A size of the squares that was solved for takes the place of the scale.
  std::vector<Eigen::Index> kept(static_cast<std::size_t>(nuisanceCount + kTwistsOfBoth));
  std::iota(kept.begin(), kept.end(), 0);
  if (solution.unknowns.squareSize) {
    kept[static_cast<std::size_t>(nuisanceCount) - 1] = nuisanceCount + kTwistsOfBoth;
  }
  const auto size = static_cast<Eigen::Index>(kept.size());
  calibration.covariance.resize(size, size);
  for (Eigen::Index i = 0; i < size; ++i) {
    for (Eigen::Index j = 0; j < size; ++j) {
      calibration.covariance(i, j) =
          joint(kept[static_cast<std::size_t>(i)], kept[static_cast<std::size_t>(j)]);
    }
  }
  calibration.scaleUncertainty = observations.scaleUncertainty;
  calibration.rotationVariance = solution.noise.rotation;
  calibration.translationVariance = solution.noise.translation;
  calibration.freedom = Freedom(solution.Used());
  calibration.cornerNoisePixels = evidence.corners.noisePixels;
  calibration.cornerInflation = CornerInflation(evidence.corners);
  calibration.invertTrackerQuaternions = observations.invertTrackerQuaternions;
  calibration.quaternionAxes = observations.quaternionAxes;
  return IsSound(calibration) ? std::optional<Calibration>(calibration) : std::nullopt;
}

}  // namespace trackedcam::crosscheck
