#include "crosscheck/step.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include <Eigen/Cholesky>

#include "crosscheck/solve.h"

namespace trackedcam::crosscheck {
namespace {

// One loop as a tracker's own frame sees it.
struct Seen {
  Twist off;        // what the tracker would have to be moved by
  Matrix6d weight;  // of that
  Eigen::Matrix<double, 6, 12> weightedDesign;
};

double Quadratic(const Seen& seen, const Twist& step) {
  const Twist left = seen.off - step;
  return left.dot(seen.weight * left);
}

std::vector<Seen> SeenBy(Tracker tracker, const Loops& loops, const Solution& solution) {
  std::vector<Seen> all;
  for (std::size_t i = 0; i < loops.size(); ++i) {
    const Pose pose = tracker == Tracker::kCamera
                          ? solution.Transform_Cam_Tc
                          : solution.Transform_Cam_Tc * loops[i].Transform_Tc_Tr;
    const Matrix6d adjoint = Adjoint(pose);
    const Matrix6d weight =
        CovarianceOf(loops[i], solution, solution.noise).llt().solve(Matrix6d::Identity());
    Seen seen;
    seen.off = Adjoint(pose.inverse()) * Residual(loops[i], i, solution);
    seen.weight = adjoint.transpose() * weight * adjoint;
    seen.weightedDesign = adjoint.transpose() * weight * DesignOf(loops[i], i, solution);
    all.push_back(seen);
  }
  return all;
}

Twist Median(const std::vector<Seen>& all, std::size_t begin, std::size_t end) {
  Twist median;
  std::vector<double> values(end - begin);
  for (Eigen::Index k = 0; k < 6; ++k) {
    for (std::size_t i = begin; i < end; ++i) {
      values[i - begin] = all[i].off[k];
    }
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    median[k] = *middle;
  }
  return median;
}

// Where one side of the step was left out as bad: its photographs agree with each other.
void TryAgreement(const std::vector<Seen>& all, std::size_t begin, std::size_t end,
                  StepCandidate candidate, StepCandidate& best) {
  candidate.step = Median(all, begin, end);
  candidate.score = 0;
  for (std::size_t i = begin; i < end; ++i) {
    candidate.score +=
        Capped(Quadratic(all[i], Twist::Zero())) - Capped(Quadratic(all[i], candidate.step));
  }
  if (candidate.score > best.score) {
    best = candidate;
  }
}

// Where the solution lies between both sides: what a step would gain to first order, all other
// unknowns following it.
void TryScores(const std::vector<Seen>& all, const Solution& solution, Tracker tracker,
               StepCandidate& best) {
  Matrix6d information = Matrix6d::Zero();
  Eigen::Matrix<double, 6, 12> shared = Eigen::Matrix<double, 6, 12>::Zero();
  Twist towards = Twist::Zero();
  std::size_t after = 0;
  for (std::size_t i = all.size(); i-- > 0;) {
    if (solution.used[i]) {
      information += all[i].weight;
      shared += all[i].weightedDesign;
      towards += all[i].weight * all[i].off;
      ++after;
    }
    if (!solution.used[i] || after < kLeastBesideStep ||
        solution.Used() - after < kLeastBesideStep) {
      continue;
    }
    const Eigen::LDLT<Matrix6d> solver(information -
                                       shared * solution.covariance * shared.transpose());
    const Twist step = solver.solve(towards);
    const double score = towards.dot(step);
    if (solver.vectorD().minCoeff() > 0 && score > best.score) {
      best = {tracker, i, score, false, step};
    }
  }
}

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

double Capped(double disagreement) {
  return std::min(disagreement, DisagreementLimit());
}

StepCandidate BestCandidate(const Loops& loops, const Solution& solution) {
  StepCandidate best;
  for (const Tracker tracker : {Tracker::kCamera, Tracker::kChart}) {
    const std::vector<Seen> all = SeenBy(tracker, loops, solution);
    TryScores(all, solution, tracker, best);
    for (std::size_t before = kLeastBesideStep; before + kLeastBesideStep <= loops.size();
         ++before) {
      TryAgreement(all, before, loops.size(), {tracker, before, 0, false, Twist::Zero()}, best);
      TryAgreement(all, 0, before, {tracker, before, 0, true, Twist::Zero()}, best);
    }
  }
  return best;
}

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
