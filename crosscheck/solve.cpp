#include "crosscheck/solve.h"

#include <algorithm>
#include <cmath>

#include <Eigen/Cholesky>

#include "crosscheck/distributions.h"
#include "crosscheck/median.h"
#include "crosscheck/refinement.h"

namespace trackedcam::crosscheck {
namespace {

constexpr int kMostRounds = 20;
constexpr int kRoundsBothWays = 8;  // then loops only leave, so that it ends

void MeasureDisagreement(const Loops& loops, Solution& solution) {
  solution.disagreement.resize(loops.size());
  for (std::size_t i = 0; i < loops.size(); ++i) {
    const Twist residual = Residual(loops[i], i, solution);
    const double value =
        residual.dot(CovarianceOf(loops[i], solution, solution.noise).llt().solve(residual));
    solution.disagreement[i] = std::isfinite(value) ? value : HUGE_VAL;
  }
}

}  // namespace

double DisagreementLimit() {
  static const double limit = ChiSquaredQuantile(0.999, 6);
  return limit;
}

std::optional<Solution> Solve(const Loops& loops, Solution from, const Choice& choice) {
  Solution solution = std::move(from);
  solution.used = choice.first;
  if (choice.noise) {
    solution.noise = *choice.noise;
  }
  for (int round = 0; round < kMostRounds; ++round) {
    if (solution.Used() < 3) {
      return std::nullopt;
    }
    if (!Refine(loops, solution, choice.noise.has_value())) {
      return std::nullopt;
    }
    MeasureDisagreement(loops, solution);
    if (choice.isFixed) {
      break;
    }
    double scale = 1;
    if (round == 0 && !choice.noise) {
      // The closest half looks less noisy than it is; all of them together say by how much.
      scale = std::max(1.0, Median(solution.disagreement) / ChiSquaredQuantile(0.5, 6));
    }
    std::vector<bool> used(loops.size());
    for (std::size_t i = 0; i < loops.size(); ++i) {
      used[i] = solution.disagreement[i] <= scale * DisagreementLimit() &&
                (round < kRoundsBothWays || solution.used[i]);
    }
    if (used == solution.used || round + 1 == kMostRounds) {
      break;
    }
    solution.used = used;
  }
  CarryLens(loops, solution);
  return solution;
}

}  // namespace trackedcam::crosscheck
