#include "crosscheck/refinement.h"

#include <algorithm>
#include <cmath>

#include <Eigen/Cholesky>

namespace trackedcam::crosscheck {
namespace {

constexpr int kMostSteps = 30;

using Unknowns = Eigen::Matrix<double, Eigen::Dynamic, 1, 0, kMostUnknowns, 1>;
using Normal =
    Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, 0, kMostUnknowns, kMostUnknowns>;

// The inverse of a normal matrix whose unknowns differ in size; nothing where it has none.
std::optional<Normal> Inverse(const Normal& normal) {
  const Unknowns scale = normal.diagonal().cwiseSqrt().cwiseInverse();
  if (!scale.allFinite()) {
    return std::nullopt;
  }
  const Normal scaled = scale.asDiagonal() * normal * scale.asDiagonal();
  const Eigen::LDLT<Normal> solver(scaled);
  if (solver.info() != Eigen::Success || !(solver.vectorD().minCoeff() > 1e-11)) {
    return std::nullopt;
  }
  const Normal inverse = solver.solve(Normal::Identity(normal.rows(), normal.cols()));
  return Normal(scale.asDiagonal() * inverse * scale.asDiagonal());
}

void Apply(const Unknowns& change, Solution& solution) {
  solution.Transform_Cam_Tc = Exp(change.head<6>()) * solution.Transform_Cam_Tc;
  Eigen::Index next = 6;
  if (solution.sought.mounting) {
    solution.Transform_Tr_Chart = solution.Transform_Tr_Chart * Exp(change.segment<6>(next));
    next += 6;
  }
  if (solution.sought.squareSize) {
    solution.squareFactor += change[next];
    next += 1;
  }
  if (solution.sought.step) {
    solution.step = Exp(change.segment<6>(next)) * solution.step;
  }
}

class Refinement {
 public:
  Refinement(const Loops& loops, Solution& solution, bool holdsNoise)
      : loops_(loops), solution_(solution), holdsNoise_(holdsNoise) {}

  bool Run() {
    for (int step = 0; step < kMostSteps; ++step) {
      Sum();
      const std::optional<Normal> inverse = Inverse(normal_);
      if (!inverse) {
        return false;
      }
      const Unknowns change = *inverse * right_;
      if (!change.allFinite() || change.norm() > 10) {
        return false;
      }
      const Noise before = solution_.noise;
      if (!holdsNoise_) {
        solution_.noise = ScoringStep(before, LikelihoodAfter(change, *inverse));
      }
      Apply(change, solution_);
      solution_.covariance = *inverse;
      if (change.norm() < 1e-7 && std::abs(solution_.noise.turn / before.turn - 1) < 1e-3 &&
          std::abs(solution_.noise.shift / before.shift - 1) < 1e-3) {
        break;
      }
    }
    return true;
  }

  void CarryLens() {
    Sum();
    Eigen::MatrixXd pull = Eigen::MatrixXd::Zero(normal_.rows(), 6);
    for (const Term& term : terms_) {
      pull += term.design.transpose() * term.weight * loops_[term.index].byLens;
    }
    solution_.byLens = solution_.covariance * pull;
  }

 private:
  struct Term {
    std::size_t index;
    Twist residual;
    Design design;
    Matrix6d weight;
    NoiseCarriers carriers;
  };

  void Sum() {
    const int count = CountUnknowns(solution_.sought);
    normal_ = Normal::Zero(count, count);
    right_ = Unknowns::Zero(count);
    terms_.clear();
    for (std::size_t i = 0; i < loops_.size(); ++i) {
      if (!solution_.used[i]) {
        continue;
      }
      Term term;
      term.index = i;
      term.residual = Residual(loops_[i], i, solution_);
      term.design = DesignOf(loops_[i], i, solution_);
      const Pose Transform_Cam_Tc = Transform_Cam_Tc_At(solution_, i);
      term.carriers = CarriersOf(Transform_Cam_Tc, Transform_Cam_Tc * loops_[i].Transform_Tc_Tr);
      const Matrix6d covariance = solution_.noise.turn * term.carriers.turn +
                                  solution_.noise.shift * term.carriers.shift +
                                  loops_[i].cornerCovariance;
      term.weight = covariance.llt().solve(Matrix6d::Identity());
      const Design weighted = term.weight * term.design;
      normal_.noalias() += term.design.transpose() * weighted;
      right_.noalias() += weighted.transpose() * term.residual;
      terms_.push_back(term);
    }
  }

  LikelihoodSums LikelihoodAfter(const Unknowns& change, const Normal& inverse) const {
    LikelihoodSums sums;
    for (const Term& term : terms_) {
      const Twist residual = term.residual - term.design * change;
      const Twist weighted = term.weight * residual;
      const Matrix6d turn = term.weight * term.carriers.turn;
      const Matrix6d shift = term.weight * term.carriers.shift;
      const Design weightedDesign = term.weight * term.design;
      // The part of a loop's weight that its own unknowns take away.
      const Matrix6d taken = weightedDesign * inverse * weightedDesign.transpose();
      sums.squares += Eigen::Vector2d(weighted.dot(term.carriers.turn * weighted),
                                      weighted.dot(term.carriers.shift * weighted));
      sums.expected +=
          Eigen::Vector2d(turn.trace() - taken.cwiseProduct(term.carriers.turn).sum(),
                          shift.trace() - taken.cwiseProduct(term.carriers.shift).sum());
      sums.information(0, 0) += 0.5 * turn.cwiseProduct(turn.transpose()).sum();
      sums.information(0, 1) += 0.5 * turn.cwiseProduct(shift.transpose()).sum();
      sums.information(1, 1) += 0.5 * shift.cwiseProduct(shift.transpose()).sum();
    }
    sums.information(1, 0) = sums.information(0, 1);
    const double equations = 6.0 * static_cast<double>(terms_.size());
    sums.information *= std::max(0.1, 1 - static_cast<double>(change.size()) / equations);
    return sums;
  }

  const Loops& loops_;
  Solution& solution_;
  bool holdsNoise_;
  Normal normal_;
  Unknowns right_;
  std::vector<Term> terms_;
};

}  // namespace

bool Refine(const Loops& loops, Solution& solution, bool holdsNoise) {
  return Refinement(loops, solution, holdsNoise).Run();
}

void CarryLens(const Loops& loops, Solution& solution) {
  Refinement(loops, solution, true).CarryLens();
}

}  // namespace trackedcam::crosscheck
