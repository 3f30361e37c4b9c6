#include "crosscheck/corner_flaws.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <limits>
#include <numeric>
#include <utility>

#include <Eigen/Cholesky>

#include "crosscheck/statistics.h"

namespace trackedcam::crosscheck {
namespace {

using Indices = std::vector<Eigen::Index>;

// Corners come in single precision or with six decimals; none are more accurate than this.
constexpr double kLeastNoise = 1e-3;  // pixels

// A flaw is certain below this: four are tried, and a shoot without one passes 998 times of 1000.
constexpr double kCertainFlaw = 3e-4;
constexpr std::array<CornerFlaw, 4> kFlaws = {CornerFlaw::kTangential, CornerFlaw::kSixthOrder,
                                              CornerFlaw::kStretched, CornerFlaw::kNotFlat};
constexpr int kRounds = 10;          // of Gauss-Newton
constexpr double kConverged = 1e-6;  // change in standard errors

Indices LensParameters() {
  return {0, 1, 2, 3, 4, 5};
}

Indices Together(Indices first, const Indices& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

bool AreFinite(const std::vector<Eigen::Vector2d>& corners) {
  return std::all_of(corners.begin(), corners.end(),
                     [](const Eigen::Vector2d& corner) { return corner.allFinite(); });
}

// Of an information matrix whose parameters differ in size by orders of magnitude; NaN if it is
// singular.
Eigen::MatrixXd InverseOf(const Eigen::MatrixXd& information) {
  const Eigen::VectorXd scale = information.diagonal().cwiseSqrt().cwiseInverse();
  const Eigen::MatrixXd nothing = Eigen::MatrixXd::Constant(
      information.rows(), information.cols(), std::numeric_limits<double>::quiet_NaN());
  if (!scale.allFinite()) {
    return nothing;
  }
  const Eigen::MatrixXd scaled = scale.asDiagonal() * information * scale.asDiagonal();
  const Eigen::LDLT<Eigen::MatrixXd> solver(scaled);
  if (!(solver.vectorD().minCoeff() > 1e-12)) {
    return nothing;
  }
  const Eigen::MatrixXd inverse =
      solver.solve(Eigen::MatrixXd::Identity(information.rows(), information.cols()));
  return scale.asDiagonal() * inverse * scale.asDiagonal();
}

std::size_t CountPoses(const CornerFit& fit) {
  return static_cast<std::size_t>(std::count_if(fit.poses.begin(), fit.poses.end(),
                                                [](const auto& pose) { return pose.has_value(); }));
}

double FreedomOfCorners(const CornerFit& fit, std::size_t parameters) {
  return static_cast<double>(CountPoses(fit)) * (2.0 * static_cast<double>(fit.board.size()) - 6) -
         static_cast<double>(parameters);
}

// The poses, from those before, and what the corners say at them.
void FitPoses(const std::vector<std::vector<Eigen::Vector2d>>& corners, CornerFit& fit) {
  fit.board = fit.model.board.Points();
  fit.poses.resize(corners.size());
  fit.equations.assign(corners.size(), std::nullopt);
  fit.information.setZero();
  double squares = 0;
  for (std::size_t i = 0; i < corners.size(); ++i) {
    std::optional<ChartPose>& pose = fit.poses[i];
    if (pose) {
      pose = RefineChartPose(pose->Transform_Cam_Chart, fit.model.lens, fit.board, corners[i]);
    } else if (AreFinite(corners[i])) {
      pose = FindChartPose(fit.model.lens, fit.board, corners[i]);
    }
    if (pose) {
      fit.equations[i] = ModelEquationsAt(*pose, fit.model, corners[i]);
      fit.information += fit.equations[i]->information;
      squares += pose->equations.squares;
    }
  }
  const double freedom = FreedomOfCorners(fit, fit.parameters.size());
  fit.noisePixels = freedom > 0 ? std::max(std::sqrt(squares / freedom), kLeastNoise) : kLeastNoise;
  fit.covariance = fit.noisePixels * fit.noisePixels *
                   InverseOf(fit.information(fit.parameters, fit.parameters));
}

CornerVector TowardsOf(const CornerFit& fit) {
  CornerVector towards = CornerVector::Zero();
  for (const std::optional<ModelEquations>& equations : fit.equations) {
    if (equations) {
      towards += equations->towards;
    }
  }
  return towards;
}

// How likely the flaw's parameters would be as clear by chance, if it is solved for as well. Errors
// of the corners of one photograph may depend on each other, so that the photographs tell as well
// how well they agree with each other; the larger of the two.
double ChanceOf(CornerFlaw flaw, const CornerFit& fit) {
  const Indices own = ParametersOf(flaw);
  const Indices all = Together(fit.parameters, own);
  const auto size = static_cast<Eigen::Index>(own.size());
  const Eigen::MatrixXd inverse = InverseOf(fit.information(all, all));
  const CornerVector towardsAll = TowardsOf(fit);
  const Eigen::VectorXd towards = towardsAll(all);
  const Eigen::VectorXd change = inverse * towards;
  if (!change.allFinite()) {
    return 1;
  }
  double squares = 0;
  Eigen::MatrixXd scatter = Eigen::MatrixXd::Zero(inverse.rows(), inverse.cols());
  for (std::size_t i = 0; i < fit.equations.size(); ++i) {
    if (fit.equations[i]) {
      const ModelEquations& equations = *fit.equations[i];
      const Eigen::VectorXd left =
          equations.towards(all) - equations.information(all, all) * change;
      scatter += left * left.transpose();
      squares += fit.poses[i]->equations.squares;
    }
  }
  squares -= change.dot(towards);
  const double freedom = FreedomOfCorners(fit, all.size());
  const double photographs = static_cast<double>(CountPoses(fit)) - static_cast<double>(size);
  if (!(freedom > 0 && photographs > 0)) {
    return 1;
  }
  const auto tSquared = [&](const Eigen::MatrixXd& covariance) {
    const Eigen::VectorXd value = change.tail(size);
    return value.dot(covariance.bottomRightCorner(size, size).ldlt().solve(value));
  };
  const double variance = std::max(squares / freedom, kLeastNoise * kLeastNoise);
  const auto elements = static_cast<double>(size);
  return std::max(HotellingTail(tSquared(variance * inverse), elements, freedom),
                  HotellingTail(tSquared(inverse * scatter * inverse), elements, photographs));
}

void SolveTogether(const std::vector<std::vector<Eigen::Vector2d>>& corners, CornerFit& fit) {
  for (int round = 0; round < kRounds; ++round) {
    const Eigen::VectorXd change =
        InverseOf(fit.information(fit.parameters, fit.parameters)) * TowardsOf(fit)(fit.parameters);
    CornerVector values = fit.model.Parameters();
    values(fit.parameters) += change;
    fit.model.SetParameters(values);
    FitPoses(corners, fit);
    const Eigen::VectorXd errors = fit.covariance.diagonal().cwiseSqrt();
    if (!(change.cwiseQuotient(errors).cwiseAbs().maxCoeff() > kConverged)) {
      break;
    }
  }
}

bool IsSound(const CornerFit& fit, std::size_t poses) {
  return fit.covariance.allFinite() && CountPoses(fit) == poses && fit.model.lens.fx > 0 &&
         fit.model.lens.fy > 0;
}

}  // namespace

std::vector<Eigen::Index> ParametersOf(CornerFlaw flaw) {
  switch (flaw) {
    case CornerFlaw::kTangential:
      return {6, 7};
    case CornerFlaw::kSixthOrder:
      return {8};
    case CornerFlaw::kStretched:
      return {9};
    case CornerFlaw::kNotFlat:
      return {10, 11, 12};
  }
  return {};
}

CornerFit FitCorners(const CornerModel& model,
                     const std::vector<std::vector<Eigen::Vector2d>>& corners) {
  CornerFit fit;
  fit.model = model;
  fit.parameters = LensParameters();
  FitPoses(corners, fit);
  const std::size_t poses = CountPoses(fit);
  while (fit.flaws.size() < kFlaws.size()) {
    std::optional<std::pair<double, CornerFlaw>> clearest;
    for (const CornerFlaw flaw : kFlaws) {
      if (std::find(fit.flaws.begin(), fit.flaws.end(), flaw) == fit.flaws.end()) {
        const double chance = ChanceOf(flaw, fit);
        if (chance < kCertainFlaw && (!clearest || chance < clearest->first)) {
          clearest = {chance, flaw};
        }
      }
    }
    if (!clearest) {
      break;
    }
    CornerFit with = fit;
    with.flaws.push_back(clearest->second);
    with.parameters = Together(with.parameters, ParametersOf(clearest->second));
    SolveTogether(corners, with);
    if (!IsSound(with, poses)) {
      break;
    }
    fit = with;
  }
  return fit;
}

Eigen::Matrix<double, kAllLensParameters, kAllLensParameters> CovarianceOfAnyLens(
    const CornerFit& fit) {
  Indices all(kAllLensParameters);
  std::iota(all.begin(), all.end(), 0);
  std::copy_if(fit.parameters.begin(), fit.parameters.end(), std::back_inserter(all),
               [](Eigen::Index parameter) { return parameter >= kAllLensParameters; });
  return fit.noisePixels * fit.noisePixels *
         InverseOf(fit.information(all, all))
             .topLeftCorner<kAllLensParameters, kAllLensParameters>();
}

double FreedomOf(const CornerFit& fit) {
  return FreedomOfCorners(fit, fit.parameters.size());
}

Eigen::VectorXd ChangeWithout(const CornerFit& fit, CornerFlaw flaw) {
  const Indices own = ParametersOf(flaw);
  std::vector<Eigen::Index> others;  // places in fit.parameters
  std::vector<Eigen::Index> places;
  for (std::size_t i = 0; i < fit.parameters.size(); ++i) {
    const bool isOwn = std::find(own.begin(), own.end(), fit.parameters[i]) != own.end();
    (isOwn ? places : others).push_back(static_cast<Eigen::Index>(i));
  }
  const Eigen::MatrixXd information = fit.information(fit.parameters, fit.parameters);
  const CornerVector values = fit.model.Parameters();
  const Eigen::VectorXd value = values(own);
  const Eigen::MatrixXd byOthers = information(others, others);
  const Eigen::MatrixXd shared = information(others, places);
  const Eigen::VectorXd followed = InverseOf(byOthers) * (shared * value);
  Eigen::VectorXd change(static_cast<Eigen::Index>(fit.parameters.size()));
  for (std::size_t i = 0; i < places.size(); ++i) {
    change[places[i]] = -value[static_cast<Eigen::Index>(i)];
  }
  for (std::size_t i = 0; i < others.size(); ++i) {
    change[others[i]] = followed[static_cast<Eigen::Index>(i)];
  }
  return change;
}

}  // namespace trackedcam::crosscheck
