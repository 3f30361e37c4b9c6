#include "crosscheck/step.h"

#include <algorithm>
#include <array>
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
constexpr std::size_t kMany = 1000;

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

// A disagreement, at most that at which a loop is left out of many.
double Capped(double disagreement) {
  static const double limit = DisagreementLimit(kMany);
  return std::min(disagreement, limit);
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
    seen.off = Adjoint(pose.inverse()) * Remaining(loops[i], i, solution);
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
    const double limit = DisagreementLimit(start.Used());
    SolveOptions options;
    for (std::size_t i = 0; i < loops.size(); ++i) {
      options.first.push_back(DisagreementOf(loops[i], i, start, noise) <= limit);
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

// The photographs in two seats of a tracker, with the covariance of their displacements in a seat.
struct Seats {
  std::vector<bool> inSecond;  // one for each loop
  std::array<Twist, 2> seat = {Twist::Zero(), Twist::Zero()};
  Matrix6d within = Matrix6d::Identity();

  std::size_t Count(bool second) const {
    return static_cast<std::size_t>(std::count(inSecond.begin(), inSecond.end(), second));
  }
};

double SquaredDistanceTo(const Seats& seats, std::size_t seat, const Seen& seen) {
  return SquaredDistance(seen.off - seats.seat.at(seat), seats.within);
}

void MeasureSeats(const std::vector<Seen>& all, Seats& seats) {
  for (const bool second : {false, true}) {
    Twist sum = Twist::Zero();
    for (std::size_t i = 0; i < all.size(); ++i) {
      sum += seats.inSecond[i] == second ? all[i].off : Twist::Zero();
    }
    seats.seat.at(second ? 1 : 0) = sum / static_cast<double>(seats.Count(second));
  }
  seats.within.setZero();
  for (std::size_t i = 0; i < all.size(); ++i) {
    const Twist left = all[i].off - seats.seat.at(seats.inSecond[i] ? 1 : 0);
    seats.within += left * left.transpose() / static_cast<double>(all.size() - 2);
  }
  // Rows have about six decimals.
  seats.within.diagonal().array() += 1e-14;
}

// Along the direction in which the photographs differ most, in standard errors.
std::vector<bool> SplitAlongWidest(const std::vector<Seen>& all) {
  Twist mean = Twist::Zero();
  for (const Seen& seen : all) {
    mean += seen.off / static_cast<double>(all.size());
  }
  Matrix6d scatter = Matrix6d::Zero();
  for (const Seen& seen : all) {
    scatter += seen.weight * (seen.off - mean) * (seen.off - mean).transpose();
  }
  Twist direction = Twist::Ones();
  for (int round = 0; round < 30; ++round) {
    direction = (scatter.transpose() * direction).normalized();
  }
  std::vector<bool> inSecond;
  for (const Seen& seen : all) {
    inSecond.push_back((seen.off - mean).dot(direction) > 0);
  }
  return inSecond;
}

std::optional<Seats> FindSeats(const std::vector<Seen>& all, const std::vector<bool>& start) {
  constexpr int kRounds = 20;
  Seats seats;
  seats.inSecond = start;
  for (int round = 0; round < kRounds; ++round) {
    if (seats.Count(true) < kLeastEachSide || seats.Count(false) < kLeastEachSide) {
      return std::nullopt;
    }
    MeasureSeats(all, seats);
    std::vector<bool> inSecond;
    for (const Seen& seen : all) {
      inSecond.push_back(SquaredDistanceTo(seats, 1, seen) < SquaredDistanceTo(seats, 0, seen));
    }
    if (inSecond == seats.inSecond) {
      break;
    }
    seats.inSecond = inSecond;
  }
  return seats;
}

// As far from its own seat as noise is: a few bad photographs make no cloud.
bool IsCloud(const std::vector<double>& squares) {
  constexpr double kLeastMedian = 0.4;  // of the mean; noise has 0.9
  double sum = 0;
  for (const double square : squares) {
    sum += square;
  }
  return Median(squares) > kLeastMedian * sum / static_cast<double>(squares.size());
}

// Two clouds of about the same size, far from each other, between which the shoot goes to and fro.
bool AreApart(const std::vector<Seen>& all, const Seats& seats) {
  constexpr int kLeastChanges = 4;  // fewer would be a step, or a drift
  constexpr double kMostRatio = 4;  // of the medians
  // Beyond the 99.9 % of noise that is cut in two, from 20 photographs on.
  const double least = 3.5 + 90 / static_cast<double>(all.size());
  std::array<std::vector<double>, 2> squares;
  int changes = 0;
  for (std::size_t i = 0; i < all.size(); ++i) {
    const std::size_t seat = seats.inSecond[i] ? 1 : 0;
    squares.at(seat).push_back(SquaredDistanceTo(seats, seat, all[i]));
    changes += i > 0 && seats.inSecond[i] != seats.inSecond[i - 1] ? 1 : 0;
  }
  const double first = Median(squares[0]);
  const double second = Median(squares[1]);
  return SquaredDistance(seats.seat[1] - seats.seat[0], seats.within) > least * least &&
         std::max(first, second) < kMostRatio * std::min(first, second) && IsCloud(squares[0]) &&
         IsCloud(squares[1]) && changes >= kLeastChanges;
}

// Both sides agree with themselves, and the photographs next to the step belong to their side: an
// error that grows, or follows the pose, has no such place.
bool IsSharp(const Solution& solved) {
  constexpr double kLeastShare = 0.5;      // of each side
  constexpr double kLeastShareNear = 0.7;  // of those next to the step
  const auto shareOf = [&](std::size_t begin, std::size_t end) {
    const auto first = solved.used.begin();
    return static_cast<double>(std::count(first + static_cast<std::ptrdiff_t>(begin),
                                          first + static_cast<std::ptrdiff_t>(end), true)) /
           static_cast<double>(end - begin);
  };
  const std::size_t before = solved.unknowns.before;
  const std::size_t all = solved.used.size();
  return shareOf(0, before) >= kLeastShare && shareOf(before, all) >= kLeastShare &&
         shareOf(before - kLeastEachSide, before) >= kLeastShareNear &&
         shareOf(before, before + kLeastEachSide) >= kLeastShareNear;
}

}  // namespace

std::optional<FoundStep> FindStep(const Loops& loops, const Solution& solution) {
  const StepCandidate candidate = BestCandidate(loops, solution);
  if (!(candidate.score > kLeastScore)) {
    return std::nullopt;
  }
  const std::optional<Solution> solved =
      SolveWith(loops, StartWith(candidate, solution), solution.noise);
  if (!solved || !IsSharp(*solved)) {
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
  found.step.before = loops[solved->unknowns.before].photographs.front();
  found.step.mm = solved->step.translation().norm() * 1e3;
  found.step.degrees = RotationDegrees(solved->step);
  found.step.gain = gain;
  return found;
}

std::optional<TrackerLoose> FindLooseTracker(const Loops& loops, const Solution& solution) {
  constexpr std::size_t kLeastLoops = 20;  // fewer do not show how far noise reaches
  if (loops.size() < kLeastLoops) {
    return std::nullopt;
  }
  std::vector<bool> leftOut;
  for (const bool used : solution.used) {
    leftOut.push_back(!used);
  }
  std::optional<Seats> best;
  Tracker bestTracker = Tracker::kCamera;
  for (const Tracker tracker : {Tracker::kCamera, Tracker::kChart}) {
    const std::vector<Seen> all = SeenBy(tracker, loops, solution);
    for (const std::vector<bool>& start : {leftOut, SplitAlongWidest(all)}) {
      const std::optional<Seats> seats = FindSeats(all, start);
      // The right tracker is that in whose frame the clouds are small.
      if (seats && AreApart(all, *seats) &&
          (!best || seats->within.determinant() < best->within.determinant())) {
        best = seats;
        bestTracker = tracker;
      }
    }
  }
  if (!best) {
    return std::nullopt;
  }
  const Pose between = Exp(best->seat[0]).inverse() * Exp(best->seat[1]);
  TrackerLoose loose = {
      bestTracker, between.translation().norm() * 1e3, RotationDegrees(between), {}};
  const bool isSecondFewer = best->Count(true) <= best->Count(false);
  for (std::size_t i = 0; i < loops.size(); ++i) {
    if (best->inSecond[i] == isSecondFewer) {
      loose.photographs.insert(loose.photographs.end(), loops[i].photographs.begin(),
                               loops[i].photographs.end());
    }
  }
  return loose;
}

}  // namespace trackedcam::crosscheck
