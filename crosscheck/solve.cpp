#include "crosscheck/solve.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <Eigen/Cholesky>

#include "crosscheck/start.h"
#include "crosscheck/statistics.h"
#include "crosscheck/symmetric.h"

namespace trackedcam::crosscheck {
namespace {

using UnknownVector = Eigen::Matrix<double, Eigen::Dynamic, 1, 0, kMostUnknowns, 1>;
using NuisanceVector = Eigen::Matrix<double, Eigen::Dynamic, 1, 0, kMostNuisances, 1>;
using NuisanceMatrix =
    Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, 0, kMostNuisances, kMostNuisances>;
using UnknownMatrix =
    Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, 0, kMostUnknowns, kMostUnknowns>;

// Rows have about six decimals; less noise than this would be that of rounding.
constexpr double kLeastRotation = 1e-14;     // (1e-7 rad)²
constexpr double kLeastTranslation = 1e-14;  // (0.1 µm)²

constexpr int kMostSteps = 30;
constexpr int kMostRounds = 20;
constexpr int kRoundsBothWays = 8;  // after these no loop comes back, so that the rounds end

// The sums over the loops for restricted maximum likelihood, rotation before translation.
struct LikelihoodSums {
  Eigen::Vector2d squares = Eigen::Vector2d::Zero();  // of weighted residuals, through the carriers
  Eigen::Vector2d expected = Eigen::Vector2d::Zero();  // of these, with the present noise
  Eigen::Matrix2d information = Eigen::Matrix2d::Zero();
};

double Bounded(double wanted, double present, double least) {
  return std::max(least, std::clamp(wanted, present / 10, present * 10));
}

// One step of Fisher's scoring.
Noise ScoringStep(const Noise& noise, const LikelihoodSums& sums) {
  const Eigen::Vector2d score = 0.5 * (sums.squares - sums.expected);
  const Eigen::Matrix2d& information = sums.information;
  const double determinant = information.determinant();
  const double product = information(0, 0) * information(1, 1);
  Eigen::Vector2d change(score[0] / information(0, 0), score[1] / information(1, 1));
  const bool rotationIsLeast = noise.rotation <= kLeastRotation && score[0] <= 0;
  const bool translationIsLeast = noise.translation <= kLeastTranslation && score[1] <= 0;
  if (!rotationIsLeast && !translationIsLeast && determinant > 1e-6 * product) {
    change = information.inverse() * score;
  }
  Noise next = noise;
  if (change.allFinite()) {
    next.rotation =
        Bounded(noise.rotation + (rotationIsLeast ? 0 : change[0]), noise.rotation, kLeastRotation);
    next.translation = Bounded(noise.translation + (translationIsLeast ? 0 : change[1]),
                               noise.translation, kLeastTranslation);
  }
  // Neither can be zero: each is more than two of its standard errors.
  next.isApart = determinant > 1e-6 * product &&
                 next.rotation > 2 * std::sqrt(information(1, 1) / determinant) &&
                 next.translation > 2 * std::sqrt(information(0, 0) / determinant);
  return next;
}

int CountUnknowns(const Unknowns& unknowns) {
  return 6 + (unknowns.mounting ? 6 : 0) + (unknowns.squareSize ? 1 : 0) + (unknowns.step ? 6 : 0);
}

bool IsAfterStep(const Solution& solution, std::size_t index) {
  return solution.unknowns.step && index >= solution.unknowns.before;
}

// With the step, if the loop is after one of the camera's tracker.
Pose Transform_Cam_Tc_At(const Solution& solution, std::size_t index) {
  return IsAfterStep(solution, index) && *solution.unknowns.step == Tracker::kCamera
             ? solution.Transform_Cam_Tc * solution.step
             : solution.Transform_Cam_Tc;
}

// Of a normal matrix whose unknowns differ in size; nothing if it is singular.
std::optional<UnknownMatrix> InverseOfNormal(const UnknownMatrix& normal) {
  const UnknownVector scale = normal.diagonal().cwiseSqrt().cwiseInverse();
  if (!scale.allFinite()) {
    return std::nullopt;
  }
  const UnknownMatrix scaled = scale.asDiagonal() * normal * scale.asDiagonal();
  const Eigen::LDLT<UnknownMatrix> solver(scaled);
  if (solver.info() != Eigen::Success || !(solver.vectorD().minCoeff() > 1e-11)) {
    return std::nullopt;
  }
  const UnknownMatrix inverse = solver.solve(UnknownMatrix::Identity(normal.rows(), normal.cols()));
  return UnknownMatrix(scale.asDiagonal() * inverse * scale.asDiagonal());
}

void Apply(const UnknownVector& change, Solution& solution) {
  solution.Transform_Cam_Tc = Exp(change.head<6>()) * solution.Transform_Cam_Tc;
  Eigen::Index next = 6;
  if (solution.unknowns.mounting) {
    solution.Transform_Tr_Chart = solution.Transform_Tr_Chart * Exp(change.segment<6>(next));
    next += 6;
  }
  if (solution.unknowns.squareSize) {
    solution.squareFactor += change[next];
    next += 1;
  }
  if (solution.unknowns.step) {
    solution.step = Exp(change.segment<6>(next)) * solution.step;
  }
}

ByNuisances OwnOf(const Loop& loop, const Design& design, const Solution& solution) {
  if (solution.nuisanceRoot.cols() == 0) {
    return ByNuisances(6, 0);
  }
  // A solution that has not been solved with all of its unknowns yet has fewer rows.
  const Eigen::Index known = std::min(design.cols(), solution.byNuisances.rows());
  return (loop.byNuisances - design.leftCols(known) * solution.byNuisances.topRows(known)) *
         solution.nuisanceRoot;
}

// Gauss-Newton on the loops in use, with the noise.
class Refinement {
 public:
  Refinement(const Loops& loops, Solution& solution) : loops_(loops), solution_(solution) {}

  // Moves the unknowns, their covariance and the noise until they converge; false if the loops do
  // not determine them.
  bool Run() {
    for (int step = 0; step < kMostSteps; ++step) {
      Sum();
      const std::optional<UnknownMatrix> inverse = InverseOfNormal(normal_);
      if (!inverse) {
        return false;
      }
      const UnknownVector change = *inverse * right_;
      if (!change.allFinite() || change.norm() > 10) {
        return false;
      }
      const Noise before = solution_.noise;
      FitNuisances(change, *inverse);
      solution_.noise = ScoringStep(before, LikelihoodAfter(change, *inverse));
      Apply(change, solution_);
      solution_.covariance = *inverse;
      if (change.norm() < 1e-7 && std::abs(solution_.noise.rotation / before.rotation - 1) < 1e-3 &&
          std::abs(solution_.noise.translation / before.translation - 1) < 1e-3) {
        break;
      }
    }
    Sum();
    FitNuisances(UnknownVector::Zero(normal_.rows()), solution_.covariance);
    return true;
  }

 private:
  struct Term {
    std::size_t index;
    Twist residual;
    Design design;
    Matrix6d weight;
    NoiseCarriers carriers;
    ByNuisances own;  // see OwnOfNuisances
  };

  void Sum() {
    const int count = CountUnknowns(solution_.unknowns);
    normal_ = UnknownMatrix::Zero(count, count);
    right_ = UnknownVector::Zero(count);
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
      const Matrix6d covariance = solution_.noise.rotation * term.carriers.rotation +
                                  solution_.noise.translation * term.carriers.translation +
                                  loops_[i].cornerCovariance;
      term.weight = Inverse(covariance);
      const Design weighted = term.weight * term.design;
      normal_.noalias() += term.design.transpose() * weighted;
      right_.noalias() += weighted.transpose() * term.residual;
      terms_.push_back(term);
    }
  }

  // How the unknowns change with the nuisances, through all photographs together, and what the
  // photographs say about the nuisances.
  void FitNuisances(const UnknownVector& change, const UnknownMatrix& inverse) {
    const Eigen::Index count = loops_.front().byNuisances.cols();
    Eigen::MatrixXd pull = Eigen::MatrixXd::Zero(normal_.rows(), count);
    for (const Term& term : terms_) {
      pull += term.design.transpose() * (term.weight * loops_[term.index].byNuisances);
    }
    solution_.byNuisances = inverse * pull;
    const Eigen::Index exact = solution_.nuisanceRoot.cols() == 0 ? 0 : count;
    NuisanceMatrix normal = NuisanceMatrix::Identity(exact, exact);
    NuisanceVector right = NuisanceVector::Zero(exact);
    for (Term& term : terms_) {
      term.own = OwnOf(loops_[term.index], term.design, solution_);
      const ByNuisances weighted = term.weight * term.own;
      normal.noalias() += term.own.transpose() * weighted;
      right.noalias() += weighted.transpose() * (term.residual - term.design * change);
    }
    solution_.nuisanceLeft = normal.llt().solve(NuisanceMatrix::Identity(exact, exact));
    solution_.nuisanceShift = solution_.nuisanceLeft * right;
  }

  LikelihoodSums LikelihoodAfter(const UnknownVector& change, const UnknownMatrix& inverse) const {
    LikelihoodSums sums;
    for (const Term& term : terms_) {
      const Twist residual =
          term.residual - term.design * change - term.own * solution_.nuisanceShift;
      const Twist weighted = term.weight * residual;
      const Matrix6d rotation = term.weight * term.carriers.rotation;
      const Matrix6d translation = term.weight * term.carriers.translation;
      const Design weightedDesign = term.weight * term.design;
      const ByNuisances weightedOwn = term.weight * term.own;
      // The part of a loop's weight that goes into the unknowns and the nuisances.
      const Matrix6d taken = weightedDesign * inverse * weightedDesign.transpose() +
                             weightedOwn * solution_.nuisanceLeft * weightedOwn.transpose();
      sums.squares += Eigen::Vector2d(weighted.dot(term.carriers.rotation * weighted),
                                      weighted.dot(term.carriers.translation * weighted));
      sums.expected += Eigen::Vector2d(
          rotation.trace() - taken.cwiseProduct(term.carriers.rotation).sum(),
          translation.trace() - taken.cwiseProduct(term.carriers.translation).sum());
      sums.information(0, 0) += 0.5 * rotation.cwiseProduct(rotation.transpose()).sum();
      sums.information(0, 1) += 0.5 * rotation.cwiseProduct(translation.transpose()).sum();
      sums.information(1, 1) += 0.5 * translation.cwiseProduct(translation.transpose()).sum();
    }
    sums.information(1, 0) = sums.information(0, 1);
    const double equations = 6.0 * static_cast<double>(terms_.size());
    sums.information *= std::max(0.1, 1 - static_cast<double>(change.size()) / equations);
    return sums;
  }

  const Loops& loops_;
  Solution& solution_;
  UnknownMatrix normal_;
  UnknownVector right_;
  std::vector<Term> terms_;
};

void MeasureDisagreement(const Loops& loops, Solution& solution) {
  solution.disagreement.resize(loops.size());
  for (std::size_t i = 0; i < loops.size(); ++i) {
    const double disagreement = DisagreementOf(loops[i], i, solution, solution.noise);
    solution.disagreement[i] = std::isfinite(disagreement) ? disagreement : HUGE_VAL;
  }
}

}  // namespace

NoiseCarriers CarriersOf(const Pose& Transform_Cam_Tc, const Pose& Transform_Cam_Tr) {
  // A rotation does not change noise that is equal along all axes; only the lever counts.
  NoiseCarriers carriers = {Matrix6d::Zero(), Matrix6d::Zero()};
  for (const Pose* pose : {&Transform_Cam_Tc, &Transform_Cam_Tr}) {
    Eigen::Matrix<double, 6, 3> lever;
    lever << Eigen::Matrix3d::Identity(), Cross(pose->translation());
    carriers.rotation += lever * lever.transpose();
  }
  carriers.translation.bottomRightCorner<3, 3>() = 2 * Eigen::Matrix3d::Identity();
  return carriers;
}

std::size_t Solution::Used() const {
  return static_cast<std::size_t>(std::count(used.begin(), used.end(), true));
}

Pose Predicted(const Loop& loop, std::size_t index, const Solution& solution) {
  const Pose Transform_Cam_Tr = Transform_Cam_Tc_At(solution, index) * loop.Transform_Tc_Tr;
  return IsAfterStep(solution, index) && *solution.unknowns.step == Tracker::kChart
             ? Transform_Cam_Tr * solution.step * solution.Transform_Tr_Chart
             : Transform_Cam_Tr * solution.Transform_Tr_Chart;
}

Twist Residual(const Loop& loop, std::size_t index, const Solution& solution) {
  Pose seen = loop.Transform_Cam_Chart;
  seen.translation() *= solution.squareFactor;
  return Log(seen * Predicted(loop, index, solution).inverse());
}

Design DesignOf(const Loop& loop, std::size_t index, const Solution& solution) {
  const Unknowns& unknowns = solution.unknowns;
  Design design = Design::Zero(6, CountUnknowns(unknowns));
  design.leftCols<6>().setIdentity();
  Eigen::Index next = 6;
  if (unknowns.mounting) {
    design.middleCols<6>(next) = Adjoint(Predicted(loop, index, solution));
    next += 6;
  }
  if (unknowns.squareSize) {
    design.col(next).tail<3>() = -loop.Transform_Cam_Chart.translation();
    next += 1;
  }
  if (IsAfterStep(solution, index)) {
    design.middleCols<6>(next) = Adjoint(*unknowns.step == Tracker::kCamera
                                             ? solution.Transform_Cam_Tc
                                             : solution.Transform_Cam_Tc * loop.Transform_Tc_Tr);
  }
  return design;
}

ByNuisances OwnOfNuisances(const Loop& loop, std::size_t index, const Solution& solution) {
  return OwnOf(loop, DesignOf(loop, index, solution), solution);
}

Twist Remaining(const Loop& loop, std::size_t index, const Solution& solution) {
  Twist remaining = Residual(loop, index, solution);
  if (solution.nuisanceShift.size() > 0) {
    remaining -= OwnOfNuisances(loop, index, solution) * solution.nuisanceShift;
  }
  return remaining;
}

Matrix6d CovarianceOf(const Loop& loop, const Solution& solution, const Noise& noise) {
  const NoiseCarriers carriers =
      CarriersOf(solution.Transform_Cam_Tc, solution.Transform_Cam_Tc * loop.Transform_Tc_Tr);
  return noise.rotation * carriers.rotation + noise.translation * carriers.translation +
         loop.cornerCovariance;
}

double DisagreementOf(const Loop& loop, std::size_t index, const Solution& solution,
                      const Noise& noise) {
  return SquaredDistance(Remaining(loop, index, solution), CovarianceOf(loop, solution, noise));
}

double Freedom(std::size_t used) {
  return 3 * static_cast<double>(used) - 6;
}

double DisagreementLimit(std::size_t used) {
  return HotellingQuantile(0.999, 6, std::max(3.0, Freedom(used)));
}

std::optional<Solution> Solve(const Loops& loops, Solution from, const SolveOptions& options) {
  Solution solution = std::move(from);
  solution.used = options.first;
  for (int round = 0; round < kMostRounds; ++round) {
    if (solution.Used() < 3 || !Refinement(loops, solution).Run()) {
      return std::nullopt;
    }
    MeasureDisagreement(loops, solution);
    if (options.isFixed) {
      break;
    }
    double scale = 1;
    if (round == 0) {
      // The closest half looks less noisy than it is; the median of all loops shows by how much.
      scale = std::max(1.0, Median(solution.disagreement) / ChiSquaredQuantile(0.5, 6));
    }
    const double limit = scale * DisagreementLimit(solution.Used());
    std::vector<bool> used(loops.size());
    for (std::size_t i = 0; i < loops.size(); ++i) {
      used[i] = solution.disagreement[i] <= limit && (round < kRoundsBothWays || solution.used[i]);
    }
    if (used == solution.used || round + 1 == kMostRounds) {
      break;
    }
    solution.used = used;
  }
  return solution;
}

std::optional<Solution> SolveShoot(const Evidence& evidence) {
  constexpr int kSamples = 100;
  const auto start = FindStart(evidence.loops, BoardDistance(evidence), kSamples);
  if (!start || !evidence.nuisanceCovariance.allFinite()) {
    return std::nullopt;
  }
  Solution from;
  from.Transform_Cam_Tc = start->Transform_Cam_Tc;
  from.Transform_Tr_Chart = start->Transform_Tr_Chart;
  // The noise converges from any start within some orders of magnitude.
  const double metres = std::max(start->medianMetres, 1e-5);
  from.noise = {metres * metres, metres * metres, false};
  from.nuisanceRoot = evidence.nuisanceRoot;
  SolveOptions options;
  options.first = start->closest;
  auto solution = Solve(evidence.loops, from, options);
  const bool isFinite = solution && solution->covariance.allFinite() &&
                        solution->byNuisances.allFinite() &&
                        solution->Transform_Cam_Tc.matrix().allFinite() &&
                        solution->Transform_Tr_Chart.matrix().allFinite();
  return isFinite ? solution : std::nullopt;
}

}  // namespace trackedcam::crosscheck
