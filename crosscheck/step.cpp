#include "crosscheck/step.h"

#include <algorithm>
#include <cmath>

#include <Eigen/Cholesky>

#include "crosscheck/solve.h"
#include "crosscheck/step_places.h"

namespace trackedcam::crosscheck {
namespace {

constexpr double kLeastScore = 30;  // chi squared of six, the best of some hundred places
constexpr double kLeastGain = 40;
constexpr double kNoiseFalls = 0.7;
constexpr std::size_t kLeastBack = 4;
constexpr double kLeastShareBack = 0.1;

Solution StartWith(const StepCandidate& candidate, const Solution& solution) {
  Solution start = solution;
  start.sought.step = candidate.tracker;
  start.sought.before = candidate.before;
  const Pose moved = Exp(candidate.step);
  start.step = candidate.fitsLater ? moved.inverse() : moved;
  if (candidate.fitsLater && candidate.tracker == Tracker::kCamera) {
    start.Transform_Cam_Tc = start.Transform_Cam_Tc * moved;
  } else if (candidate.fitsLater) {
    start.Transform_Tr_Chart = moved * start.Transform_Tr_Chart;
  }
  return start;
}

// With the noise of another solution.
double DisagreementOf(const Loop& loop, std::size_t index, const Solution& solution,
                      const Noise& noise) {
  const Twist residual = Residual(loop, index, solution);
  return residual.dot(CovarianceOf(loop, solution, noise).llt().solve(residual));
}

// The place at which the same step fits best.
std::size_t BestPlace(const Loops& loops, const Solution& solution) {
  Solution never = solution;
  never.sought.before = loops.size();
  Solution always = solution;
  always.sought.before = 0;
  double cost = 0;
  for (std::size_t i = 0; i < loops.size(); ++i) {
    cost += Capped(DisagreementOf(loops[i], i, always, solution.noise));
  }
  std::size_t best = 0;
  double lowest = HUGE_VAL;
  for (std::size_t i = 0; i < loops.size(); ++i) {
    if (cost < lowest && i >= kLeastBesideStep && i + kLeastBesideStep <= loops.size()) {
      lowest = cost;
      best = i;
    }
    cost += Capped(DisagreementOf(loops[i], i, never, solution.noise)) -
            Capped(DisagreementOf(loops[i], i, always, solution.noise));
  }
  return best;
}

std::optional<Solution> SolveWith(const Loops& loops, Solution start, const Noise& noise) {
  for (int attempt = 0; attempt < 3; ++attempt) {
    Choice choice;
    for (std::size_t i = 0; i < loops.size(); ++i) {
      choice.first.push_back(DisagreementOf(loops[i], i, start, noise) <= DisagreementLimit());
    }
    const std::optional<Solution> solved = Solve(loops, start, choice);
    if (!solved) {
      return std::nullopt;
    }
    start = *solved;
    const std::size_t place = BestPlace(loops, start);
    if (place == start.sought.before || place == 0) {
      break;
    }
    start.sought.before = place;
  }
  return start;
}

// Turning and shifting in one figure: what they do at the chart; metres.
double NoiseAtChart(const Loops& loops, const Noise& noise) {
  double squares = 0;
  for (const Loop& loop : loops) {
    squares += loop.Transform_Cam_Chart.translation().squaredNorm();
  }
  return std::sqrt(noise.turn * squares / static_cast<double>(loops.size()) + noise.shift);
}

}  // namespace

std::optional<FoundStep> FindStep(const Loops& loops, const Solution& solution) {
  const StepCandidate candidate = BestCandidate(loops, solution);
  if (!(candidate.score > kLeastScore)) {
    return std::nullopt;
  }
  std::optional<Solution> solved = SolveWith(loops, StartWith(candidate, solution), solution.noise);
  if (!solved) {
    return std::nullopt;
  }
  double gain = 0;
  for (std::size_t i = 0; i < loops.size(); ++i) {
    gain += Capped(solution.disagreement[i]) -
            Capped(DisagreementOf(loops[i], i, *solved, solution.noise));
  }
  const bool isQuieter =
      NoiseAtChart(loops, solved->noise) < kNoiseFalls * NoiseAtChart(loops, solution.noise);
  const std::size_t back = solved->Used() - std::min(solved->Used(), solution.Used());
  const bool comeBack =
      back >= kLeastBack &&
      static_cast<double>(back) >= kLeastShareBack * static_cast<double>(loops.size());
  if (!(gain > kLeastGain) || !(isQuieter || comeBack)) {
    return std::nullopt;
  }
  FoundStep found = {{}, *solved};
  found.step.tracker = *solved->sought.step;
  found.step.before = loops[solved->sought.before].photograph;
  found.step.mm = solved->step.translation().norm() * 1e3;
  found.step.degrees = Log(solved->step).head<3>().norm() * 180 / EIGEN_PI;
  found.step.gain = gain;
  return found;
}

}  // namespace trackedcam::crosscheck
