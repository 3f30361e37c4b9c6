#include "crosscheck/solve.h"

#include <algorithm>
#include <cmath>

#include <Eigen/Cholesky>

#include "crosscheck/statistics.h"

namespace trackedcam::crosscheck {
namespace {

using Unknowns = Eigen::Matrix<double, Eigen::Dynamic, 1, 0, kMostUnknowns, 1>;

// Rows hold six decimals or so; below this the numbers' rounding would pass for measurements.
constexpr double kLeastTurn = 1e-14;   // (1e-7 rad)²
constexpr double kLeastShift = 1e-14;  // (0.1 µm)²

double Bounded(double wanted, double present, double least) {
  return std::max(least, std::clamp(wanted, present / 10, present * 10));
}

bool IsAfterStep(const Solution& solution, std::size_t index) {
  return solution.sought.step && index >= solution.sought.before;
}

constexpr int kMostSteps = 30;

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

NoiseCarriers CarriersOf(const Pose& Transform_Cam_Tc, const Pose& Transform_Cam_Tr) {
  // A rotation leaves noise that is equal along all axes as it is; only the lever counts.
  NoiseCarriers carriers = {Matrix6d::Zero(), Matrix6d::Zero()};
  for (const Pose* pose : {&Transform_Cam_Tc, &Transform_Cam_Tr}) {
    Eigen::Matrix<double, 6, 3> lever;
    lever << Eigen::Matrix3d::Identity(), Cross(pose->translation());
    carriers.turn += lever * lever.transpose();
  }
  carriers.shift.bottomRightCorner<3, 3>() = 2 * Eigen::Matrix3d::Identity();
  return carriers;
}

Noise ScoringStep(const Noise& noise, const LikelihoodSums& sums) {
  const Eigen::Vector2d score = 0.5 * (sums.squares - sums.expected);
  const Eigen::Matrix2d& information = sums.information;
  const double determinant = information.determinant();
  const double product = information(0, 0) * information(1, 1);
  Eigen::Vector2d change(score[0] / information(0, 0), score[1] / information(1, 1));
  const bool turnIsLeast = noise.turn <= kLeastTurn && score[0] <= 0;
  const bool shiftIsLeast = noise.shift <= kLeastShift && score[1] <= 0;
  if (!turnIsLeast && !shiftIsLeast && determinant > 1e-6 * product) {
    change = information.inverse() * score;
  }
  Noise next = noise;
  if (change.allFinite()) {
    next.turn = Bounded(noise.turn + (turnIsLeast ? 0 : change[0]), noise.turn, kLeastTurn);
    next.shift = Bounded(noise.shift + (shiftIsLeast ? 0 : change[1]), noise.shift, kLeastShift);
  }
  // Apart: neither could be nothing, each beyond two of its standard errors.
  next.isApart = determinant > 1e-6 * product &&
                 next.turn > 2 * std::sqrt(information(1, 1) / determinant) &&
                 next.shift > 2 * std::sqrt(information(0, 0) / determinant);
  return next;
}

std::size_t Solution::Used() const {
  return static_cast<std::size_t>(std::count(used.begin(), used.end(), true));
}

int CountUnknowns(const Sought& sought) {
  return 6 + (sought.mounting ? 6 : 0) + (sought.squareSize ? 1 : 0) + (sought.step ? 6 : 0);
}

Pose Transform_Cam_Tc_At(const Solution& solution, std::size_t index) {
  return IsAfterStep(solution, index) && *solution.sought.step == Tracker::kCamera
             ? solution.Transform_Cam_Tc * solution.step
             : solution.Transform_Cam_Tc;
}

Pose Predicted(const Loop& loop, std::size_t index, const Solution& solution) {
  const Pose Transform_Cam_Tr = Transform_Cam_Tc_At(solution, index) * loop.Transform_Tc_Tr;
  return IsAfterStep(solution, index) && *solution.sought.step == Tracker::kChart
             ? Transform_Cam_Tr * solution.step * solution.Transform_Tr_Chart
             : Transform_Cam_Tr * solution.Transform_Tr_Chart;
}

Twist Residual(const Loop& loop, std::size_t index, const Solution& solution) {
  Pose seen = loop.Transform_Cam_Chart;
  seen.translation() *= solution.squareFactor;
  return Log(seen * Predicted(loop, index, solution).inverse());
}

Design DesignOf(const Loop& loop, std::size_t index, const Solution& solution) {
  const Sought& sought = solution.sought;
  Design design = Design::Zero(6, CountUnknowns(sought));
  design.leftCols<6>().setIdentity();
  Eigen::Index next = 6;
  if (sought.mounting) {
    design.middleCols<6>(next) = Adjoint(Predicted(loop, index, solution));
    next += 6;
  }
  if (sought.squareSize) {
    design.col(next).tail<3>() = -loop.Transform_Cam_Chart.translation();
    next += 1;
  }
  if (IsAfterStep(solution, index)) {
    design.middleCols<6>(next) = Adjoint(*sought.step == Tracker::kCamera
                                             ? solution.Transform_Cam_Tc
                                             : solution.Transform_Cam_Tc * loop.Transform_Tc_Tr);
  }
  return design;
}

Matrix6d CovarianceOf(const Loop& loop, const Solution& solution, const Noise& noise) {
  const NoiseCarriers carriers =
      CarriersOf(solution.Transform_Cam_Tc, solution.Transform_Cam_Tc * loop.Transform_Tc_Tr);
  return noise.turn * carriers.turn + noise.shift * carriers.shift + loop.cornerCovariance;
}

bool Refine(const Loops& loops, Solution& solution, bool holdsNoise) {
  return Refinement(loops, solution, holdsNoise).Run();
}

void CarryLens(const Loops& loops, Solution& solution) {
  Refinement(loops, solution, true).CarryLens();
}

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
