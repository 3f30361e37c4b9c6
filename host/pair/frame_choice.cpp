#include "host/pair/frame_choice.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include <Eigen/Cholesky>

#include "crosscheck/evidence.h"
#include "crosscheck/solve.h"
#include "crosscheck/symmetric.h"

namespace trackedcam::host {
namespace {

using crosscheck::kDegree;

// Of an uncertainty that is as good as necessary; the sum of squares in these units is what falls.
constexpr double kMetres = 0.002;
constexpr double kRadians = 0.2 * kDegree;

double SizeOf(const Eigen::MatrixXd& information) {
  const Eigen::MatrixXd covariance =
      information.ldlt().solve(Eigen::MatrixXd::Identity(information.rows(), information.cols()));
  return covariance.diagonal().head<3>().sum() / (kRadians * kRadians) +
         covariance.diagonal().segment<3>(3).sum() / (kMetres * kMetres);
}

struct Informed {
  std::size_t candidate;
  Eigen::MatrixXd information;  // of the unknowns
};

std::vector<Informed> InformationOf(const std::vector<Candidate>& candidates,
                                    const crosscheck::Evidence& evidence,
                                    const crosscheck::Solution& solution) {
  std::vector<Informed> all;
  for (std::size_t i = 0; i < evidence.loops.size(); ++i) {
    if (!solution.used[i]) {
      continue;
    }
    const crosscheck::Loop& loop = evidence.loops[i];
    const Candidate& candidate = candidates[loop.photographs.front()];
    const double radians = candidate.errorDegrees * kDegree;
    const double metres = 1e-3 * candidate.errorMm;
    const crosscheck::Noise noise = {radians * radians, metres * metres, true};
    const auto design = DesignOf(loop, i, solution);
    all.push_back(
        {loop.photographs.front(),
         design.transpose() * crosscheck::Inverse(CovarianceOf(loop, solution, noise)) * design});
  }
  return all;
}

}  // namespace

std::vector<std::size_t> ChooseFrames(const std::vector<Candidate>& candidates,
                                      const crosscheck::Observations& board, std::size_t count) {
  std::vector<std::size_t> chosen(candidates.size());
  std::iota(chosen.begin(), chosen.end(), 0);
  if (candidates.size() <= count) {
    return chosen;
  }
  crosscheck::Observations observations = board;
  observations.photographs.clear();
  for (const Candidate& candidate : candidates) {
    observations.photographs.push_back(candidate.photograph);
  }
  const crosscheck::Evidence evidence = crosscheck::Gather(observations);
  const auto solution = crosscheck::SolveShoot(evidence);
  if (!solution) {
    return chosen;
  }
  std::vector<Informed> left = InformationOf(candidates, evidence, *solution);
  const Eigen::Index unknowns = solution->covariance.rows();
  constexpr double kAlmostNothing = 1e-2;  // so that the first ones are comparable
  Eigen::MatrixXd information = kAlmostNothing * Eigen::MatrixXd::Identity(unknowns, unknowns);
  chosen.clear();
  while (chosen.size() < count && !left.empty()) {
    const auto best = std::min_element(left.begin(), left.end(), [&](const auto& a, const auto& b) {
      return SizeOf(information + a.information) < SizeOf(information + b.information);
    });
    information += best->information;
    chosen.push_back(best->candidate);
    left.erase(best);
  }
  std::sort(chosen.begin(), chosen.end());
  return chosen;
}

}  // namespace trackedcam::host
