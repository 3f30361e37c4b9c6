#include "crosscheck/step_places.h"

#include <algorithm>
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

}  // namespace trackedcam::crosscheck
