#include "crosscheck/cross_check.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "crosscheck/comparison.h"
#include "crosscheck/distributions.h"
#include "crosscheck/findings.h"
#include "crosscheck/mounting.h"
#include "crosscheck/on_screen.h"
#include "crosscheck/photographs.h"
#include "crosscheck/slips.h"
#include "crosscheck/start.h"
#include "crosscheck/step.h"
#include "crosscheck/views.h"

namespace trackedcam::crosscheck {
namespace {

constexpr double kDegree = EIGEN_PI / 180;
constexpr int kSamples = 60;
constexpr std::size_t kLeastUsed = 6;       // photographs
constexpr double kLeastShareUsed = 0.4;     // of those that can be used

void Require(bool holds, const char* what) {
  if (!holds) {
    throw std::invalid_argument(what);
  }
}

template <class Numbers>
bool AreFinite(const Numbers& numbers) {
  return std::all_of(numbers.begin(), numbers.end(),
                     [](double number) { return std::isfinite(number); });
}

void RequireSensible(const Observations& observations) {
  Require(observations.boardColumns >= 2 && observations.boardRows >= 2,
          "the board has fewer than two inner corners in a direction");
  Require(std::isfinite(observations.square) && observations.square > 0,
          "the square has no size");
  const Lens& lens = observations.lens;
  Require(lens.width > 0 && lens.height > 0, "the photographs have no size");
  Require(lens.fx > 0 && lens.fy > 0, "a focal length is not above 0");
  Require(AreFinite(std::array<double, 6>{lens.fx, lens.fy, lens.cx, lens.cy, lens.k1, lens.k2}),
          "a figure of the lens is not a number");
  const auto corners = static_cast<std::size_t>(observations.boardColumns) *
                       static_cast<std::size_t>(observations.boardRows);
  for (const Photograph& photograph : observations.photographs) {
    Require(photograph.corners.size() == corners,
            "a photograph does not have the board's number of corners");
  }
  if (const auto& mounting = observations.mounting) {
    Require(AreFinite(mounting->rotationDegrees) && AreFinite(mounting->translationMetres),
            "a figure of the mounting is not a number");
  }
  if (observations.library) {
    Require(observations.library->allFinite(), "the transform to check is not a number");
  }
}

std::optional<Solution> SolveAll(const Evidence& evidence) {
  const std::optional<Start> start =
      FindStart(evidence.loops, BoardDistance(evidence), kSamples);
  if (!start) {
    return std::nullopt;
  }
  Solution from;
  from.Transform_Cam_Tc = start->Transform_Cam_Tc;
  from.Transform_Tr_Chart = start->Transform_Tr_Chart;
  Choice choice;
  choice.first = start->closest;
  std::optional<Solution> solution = Solve(evidence.loops, from, choice);
  const auto enough = static_cast<std::size_t>(
      std::ceil(kLeastShareUsed * static_cast<double>(evidence.loops.size())));
  return solution && solution->Used() >= std::max(kLeastUsed, enough) ? solution : std::nullopt;
}

// Solved once more with the same photographs and noise, and the size of the squares free.
std::optional<Solution> SolveScaleFree(const Evidence& evidence, const Solution& solution) {
  Solution from = solution;
  from.sought.squareSize = true;
  Choice choice;
  choice.first = solution.used;
  choice.isFixed = true;
  return Solve(evidence.loops, from, choice);
}

Matrix6d MountingCovariance(const Solution& solution, const Evidence& evidence) {
  return FullCovariance(solution, evidence).block<6, 6>(6, 6);
}

void SetSquare(const Solution& scaleFree, const Evidence& evidence, SquareSize& square) {
  // The factor is of the chart's positions: the true edge by the stated one.
  square.factor = scaleFree.squareFactor;
  square.standardError = std::sqrt(FullCovariance(scaleFree, evidence)(12, 12));
  square.p = StudentTail((square.factor - 1) / square.standardError, Freedom(scaleFree));
}

void SetNominalMounting(const Observations& observations, const Evidence& evidence,
                        const Solution& solution, const std::optional<Solution>& scaleFree,
                        CrossCheck& check) {
  if (!observations.mounting) {
    return;
  }
  const Pose stated = TransformOf(*observations.mounting);
  NominalMounting nominal;
  static_cast<Offset&>(nominal) =
      CompareMounting(solution, MountingCovariance(solution, evidence), stated);
  if (scaleFree) {
    nominal.pScaleFree =
        CompareMounting(*scaleFree, MountingCovariance(*scaleFree, evidence), stated).p;
  }
  nominal.perhaps = LikelySlip(observations, solution.Transform_Tr_Chart);
  check.nominalMounting = nominal;
}

// How far apart the chart stood before the camera, as the root mean square from the middle; metres.
double ChartSpread(const Evidence& evidence) {
  Eigen::Vector3d mean = Eigen::Vector3d::Zero();
  for (const Loop& loop : evidence.loops) {
    mean += loop.Transform_Cam_Chart.translation() / static_cast<double>(evidence.loops.size());
  }
  double squares = 0;
  for (const Loop& loop : evidence.loops) {
    squares += (loop.Transform_Cam_Chart.translation() - mean).squaredNorm();
  }
  return std::sqrt(squares / static_cast<double>(evidence.loops.size()));
}

void SetLensPart(const Evidence& evidence, const Solution& solution, double t95, Beyond& beyond) {
  const Matrix6d byLens = solution.byLens.topRows<6>() * evidence.lensCovariance *
                          solution.byLens.topRows<6>().transpose();
  const StandardError lens = StandardErrorOfLeftTwist(byLens, solution.Transform_Cam_Tc);
  const StandardError trackers = StandardErrorOfLeftTwist(
      solution.covariance.topLeftCorner<6, 6>(), solution.Transform_Cam_Tc);
  beyond.worstLensMm = t95 * lens.shiftMm.maxCoeff();
  beyond.worstLensDegrees = t95 * lens.turnDegrees.maxCoeff();
  beyond.lensIsLarger = lens.shiftMm.maxCoeff() > trackers.shiftMm.maxCoeff();
}

void SetSolution(const Observations& observations, const Evidence& evidence,
                 const Solution& solution, CrossCheck& check, Beyond& beyond) {
  check.solved = true;
  check.used = solution.Used();
  check.Transform_Cam_Tc = solution.Transform_Cam_Tc.matrix();
  check.Transform_Tr_Chart = solution.Transform_Tr_Chart.matrix();
  const Eigen::MatrixXd covariance = FullCovariance(solution, evidence);
  check.covarianceCamTcTwist = covariance.topLeftCorner<6, 6>();
  check.covarianceTrChartTwist = covariance.block<6, 6>(6, 6);
  check.standardErrorCamTc =
      StandardErrorOfLeftTwist(check.covarianceCamTcTwist, solution.Transform_Cam_Tc);
  check.standardErrorTrChart =
      StandardErrorOfRightTwist(check.covarianceTrChartTwist, solution.Transform_Tr_Chart);
  check.t95 = StudentHalfWidth95(Freedom(solution));
  check.trackerNoiseDegrees = std::sqrt(solution.noise.turn) / kDegree;
  check.trackerNoiseMm = std::sqrt(solution.noise.shift) * 1e3;
  check.trackerNoiseApart = solution.noise.isApart;
  check.diversity = DiversityOf(evidence.loops, solution);
  if (check.diversity.amplification <= kMostAmplification) {
    check.mounting = MountingOf(solution.Transform_Tr_Chart);
  }

  const std::optional<Solution> scaleFree = SolveScaleFree(evidence, solution);
  if (scaleFree) {
    SetSquare(*scaleFree, evidence, check.square);
  }
  SetNominalMounting(observations, evidence, solution, scaleFree, check);
  std::optional<Pose> library;
  if (observations.library) {
    library = PoseOf(*observations.library);
    check.library = CompareCamTc(solution, check.covarianceCamTcTwist, *library);
  }
  if (const std::optional<FoundStep> found = FindStep(evidence.loops, solution)) {
    check.step = found->step;
  }
  check.halves = CompareHalves(evidence, solution);
  check.onScreen = OnScreenOf(evidence, solution, library);
  check.suggestedViews = SuggestViews(evidence, solution);
  beyond.chartSpreadMetres = ChartSpread(evidence);
  SetLensPart(evidence, solution, check.t95, beyond);
}

}  // namespace

CrossCheck Check(const Observations& observations) {
  RequireSensible(observations);
  const Evidence evidence = Gather(observations);
  CrossCheck check;
  check.photographs = observations.photographs.size();
  check.cornerNoisePixels = evidence.cornerNoisePixels;
  const Eigen::Matrix<double, 6, 1> lens = evidence.lensCovariance.diagonal().cwiseSqrt();
  check.lens = {lens[0], lens[1], lens[2], lens[3], lens[4], lens[5]};

  Beyond beyond;
  beyond.reading = FindReading(observations, evidence);
  const std::optional<Solution> solution = SolveAll(evidence);
  check.perPhotograph = PhotographsAgainst(observations, evidence, solution ? &*solution : nullptr);
  if (solution) {
    SetSolution(observations, evidence, *solution, check, beyond);
  }
  check.findings = FindingsOf(check, beyond);
  return check;
}

}  // namespace trackedcam::crosscheck
