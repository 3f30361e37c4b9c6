#include "crosscheck/step.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "crosscheck/statistics.h"
#include "crosscheck/symmetric.h"

namespace trackedcam::crosscheck {
namespace {

constexpr std::size_t kLeastEachSide = 4;  // photographs before the step and after it
constexpr double kLeastScore = 30;         // chi squared of six, the best of some hundred places
constexpr double kLeastGain = 40;
constexpr double kNoiseFalls = 0.7;
constexpr std::size_t kLeastBack = 4;
constexpr double kLeastShareBack = 0.1;

// A place where a tracker may have moved, to first order.
struct StepCandidate {
  Tracker tracker = Tracker::kCamera;
  std::size_t before = 0;      // index of the first loop after the step
  double score = 0;            // chi squared of six that it may gain; 0 if there is no place
  bool fitsLater = false;      // the solution is right after the step, not before it
  Twist step = Twist::Zero();  // of the photographs for which the solution is not right
};

// One loop in the tracker's own frame.
struct Seen {
  Twist off;        // the displacement of the tracker that would make it fit
  Matrix6d weight;  // of that
  Eigen::Matrix<double, 6, 12> weightedDesign;
};

// A disagreement, at most that at which a loop is left out.
double Capped(double disagreement) {
  return std::min(disagreement, DisagreementLimit());
}

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
    const Matrix6d weight = Inverse(CovarianceOf(loops[i], solution, solution.noise));
    Seen seen;
    seen.off = Adjoint(pose.inverse()) * Residual(loops[i], i, solution);
    seen.weight = adjoint.transpose() * weight * adjoint;
    seen.weightedDesign = adjoint.transpose() * weight * DesignOf(loops[i], i, solution);
    all.push_back(seen);
  }
  return all;
}

Twist MedianOff(const std::vector<Seen>& all, std::size_t begin, std::size_t end) {
  Twist median;
  for (Eigen::Index k = 0; k < 6; ++k) {
    std::vector<double> values;
    for (std::size_t i = begin; i < end; ++i) {
      values.push_back(all[i].off[k]);
    }
    median[k] = Median(values);
  }
  return median;
}

// For a solution that left out one side of the step as bad: do these photographs agree with each
// other?
void TryAgreement(const std::vector<Seen>& all, std::size_t begin, std::size_t end,
                  StepCandidate candidate, StepCandidate& best) {
  candidate.step = MedianOff(all, begin, end);
  candidate.score = 0;
  for (std::size_t i = begin; i < end; ++i) {
    candidate.score +=
        Capped(Quadratic(all[i], Twist::Zero())) - Capped(Quadratic(all[i], candidate.step));
  }
  if (candidate.score > best.score) {
    best = candidate;
  }
}

// For a solution between both sides of the step: what would a step gain to first order, with all
// other unknowns following it?
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
    if (!solution.used[i] || after < kLeastEachSide || solution.Used() - after < kLeastEachSide) {
      continue;
    }
    const Ldlt solver(information - shared * solution.covariance * shared.transpose());
    const Twist step = solver.Solve(towards);
    const double score = towards.dot(step);
    if (solver.SmallestPivot() > 0 && score > best.score) {
      best = {tracker, i, score, false, step};
    }
  }
}

StepCandidate BestCandidate(const Loops& loops, const Solution& solution) {
  StepCandidate best;
  for (const Tracker tracker : {Tracker::kCamera, Tracker::kChart}) {
    const std::vector<Seen> all = SeenBy(tracker, loops, solution);
    TryScores(all, solution, tracker, best);
    for (std::size_t before = kLeastEachSide; before + kLeastEachSide <= loops.size(); ++before) {
      TryAgreement(all, before, loops.size(), {tracker, before, 0, false, Twist::Zero()}, best);
      TryAgreement(all, 0, before, {tracker, before, 0, true, Twist::Zero()}, best);
    }
  }
  return best;
}

Solution StartWith(const StepCandidate& candidate, const Solution& solution) {
  Solution start = solution;
  start.unknowns.step = candidate.tracker;
  start.unknowns.before = candidate.before;
  const Pose moved = Exp(candidate.step);
  start.step = candidate.fitsLater ? moved.inverse() : moved;
  if (candidate.fitsLater && candidate.tracker == Tracker::kCamera) {
    start.Transform_Cam_Tc = start.Transform_Cam_Tc * moved;
  } else if (candidate.fitsLater) {
    start.Transform_Tr_Chart = moved * start.Transform_Tr_Chart;
  }
  return start;
}

// The place at which the same step fits best.
std::size_t BestPlace(const Loops& loops, const Solution& solution) {
  Solution never = solution;
  never.unknowns.before = loops.size();
  Solution always = solution;
  always.unknowns.before = 0;
  double cost = 0;
  for (std::size_t i = 0; i < loops.size(); ++i) {
    cost += Capped(DisagreementOf(loops[i], i, always, solution.noise));
  }
  std::size_t best = 0;
  double lowest = HUGE_VAL;
  for (std::size_t i = 0; i < loops.size(); ++i) {
    if (cost < lowest && i >= kLeastEachSide && i + kLeastEachSide <= loops.size()) {
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
    SolveOptions options;
    for (std::size_t i = 0; i < loops.size(); ++i) {
      options.first.push_back(DisagreementOf(loops[i], i, start, noise) <= DisagreementLimit());
    }
    const std::optional<Solution> solved = Solve(loops, start, options);
    if (!solved) {
      return std::nullopt;
    }
    start = *solved;
    const std::size_t place = BestPlace(loops, start);
    if (place == start.unknowns.before || place == 0) {
      break;
    }
    start.unknowns.before = place;
  }
  return start;
}

// Rotation and translation in one measure: what they do at the chart; metres.
double NoiseAtChart(const Loops& loops, const Noise& noise) {
  double squares = 0;
  for (const Loop& loop : loops) {
    squares += loop.Transform_Cam_Chart.translation().squaredNorm();
  }
  return std::sqrt(noise.rotation * squares / static_cast<double>(loops.size()) +
                   noise.translation);
}

}  // namespace

std::optional<FoundStep> FindStep(const Loops& loops, const Solution& solution) {
  const StepCandidate candidate = BestCandidate(loops, solution);
  if (!(candidate.score > kLeastScore)) {
    return std::nullopt;
  }
  const std::optional<Solution> solved =
      SolveWith(loops, StartWith(candidate, solution), solution.noise);
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
  found.step.tracker = *solved->unknowns.step;
  found.step.before = loops[solved->unknowns.before].photograph;
  found.step.mm = solved->step.translation().norm() * 1e3;
  found.step.degrees = RotationDegrees(solved->step);
  found.step.gain = gain;
  return found;
}

}  // namespace trackedcam::crosscheck
