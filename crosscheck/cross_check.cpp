#include "crosscheck/cross_check.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

#include "crosscheck/calibration_of.h"
#include "crosscheck/clusters.h"
#include "crosscheck/evidence.h"
#include "crosscheck/findings.h"
#include "crosscheck/flaw_findings.h"
#include "crosscheck/misread.h"
#include "crosscheck/not_still.h"
#include "crosscheck/on_screen.h"
#include "crosscheck/photographs.h"
#include "crosscheck/reported_poses.h"
#include "crosscheck/solve.h"
#include "crosscheck/statistics.h"
#include "crosscheck/step.h"
#include "crosscheck/tracker_flaws.h"
#include "crosscheck/twist.h"
#include "crosscheck/uncertainty.h"
#include "crosscheck/views.h"

namespace trackedcam::crosscheck {
namespace {

void Require(bool holds, const char* message) {
  if (!holds) {
    throw std::invalid_argument(message);
  }
}

void CheckLens(const Lens& lens) {
  Require(lens.width > 0 && lens.height > 0, "The size of the photographs must be positive.");
  Require(lens.fx > 0 && lens.fy > 0 && std::isfinite(lens.fx) && std::isfinite(lens.fy),
          "The focal lengths must be positive and finite.");
  Require(std::isfinite(lens.cx + lens.cy + lens.k1 + lens.k2),
          "The centre or the distortion of the lens is infinite or NaN.");
}

void CheckTransform(const Eigen::Matrix4d& transform) {
  constexpr double kTolerance = 1e-3;  // six decimals leave 1e-6
  const Eigen::Matrix3d rotation = transform.topLeftCorner<3, 3>();
  Require(!transform.allFinite() || ((rotation.transpose() * rotation).isIdentity(kTolerance) &&
                                     rotation.determinant() > 0),
          "Transform_Cam_Tc is not a rotation and a translation.");
}

void CheckObservations(const Observations& observations) {
  Require(observations.boardColumns >= 2 && observations.boardRows >= 2,
          "The board must have at least 2 inner corners along each side.");
  Require(observations.square > 0 && std::isfinite(observations.square),
          "The edge of the squares must be positive and finite.");
  CheckLens(observations.lens);
  const std::size_t corners = static_cast<std::size_t>(observations.boardColumns) *
                              static_cast<std::size_t>(observations.boardRows);
  for (const Photograph& photograph : observations.photographs) {
    if (photograph.corners.size() != corners) {
      throw std::invalid_argument(photograph.name + " has " +
                                  std::to_string(photograph.corners.size()) +
                                  " corners, expected " + std::to_string(corners) + ".");
    }
  }
  if (observations.library) {
    CheckTransform(*observations.library);
  }
  if (observations.mounting) {
    const auto isFinite = [](double value) { return std::isfinite(value); };
    const auto& [rotation, translation] = *observations.mounting;
    Require(std::all_of(rotation.begin(), rotation.end(), isFinite) &&
                std::all_of(translation.begin(), translation.end(), isFinite),
            "The stated mounting contains an infinite or NaN value.");
  }
  Require(observations.goodEnough.mm > 0 && observations.goodEnough.degrees > 0,
          "The accuracy that is good enough must be above 0.");
  Require(std::all_of(observations.atMetres.begin(), observations.atMetres.end(),
                      [](double metres) { return metres > 0 && std::isfinite(metres); }),
          "Distances must be positive and finite.");
}

std::size_t UsedPhotographs(const Loops& loops, const Solution& solution) {
  std::size_t used = 0;
  for (std::size_t i = 0; i < loops.size(); ++i) {
    used += solution.used[i] ? loops[i].photographs.size() : 0;
  }
  return used;
}

// By noise alone, and with errors that neighbouring photographs share.
void FillUncertainty(const Evidence& evidence, const Solution& solution, CrossCheck& check) {
  Solution byNoise = solution;
  byNoise.inflation = 1;
  const auto errorOf = [&](const Solution& with) {
    return StandardErrorOfLeftTwist(FullCovariance(with, evidence).topLeftCorner<6, 6>(),
                                    solution.Transform_Cam_Tc);
  };
  check.standardErrorCamTcByNoise = errorOf(byNoise);
  Solution byClusters = solution;
  byClusters.inflation = ClusterInflation(evidence.loops, solution);
  check.standardErrorCamTcByClusters = errorOf(byClusters);

  const Eigen::MatrixXd covariance = FullCovariance(solution, evidence);
  check.covarianceCamTcTwist = covariance.topLeftCorner<6, 6>();
  check.covarianceTrChartTwist = covariance.block<6, 6>(6, 6);
  check.standardErrorCamTc =
      StandardErrorOfLeftTwist(check.covarianceCamTcTwist, solution.Transform_Cam_Tc);
  check.standardErrorTrChart =
      StandardErrorOfRightTwist(check.covarianceTrChartTwist, solution.Transform_Tr_Chart);
  if (check.diversity.amplification > kMostAmplification) {
    // The covariance of a solution that is almost undetermined is that of a wrong place.
    const Eigen::Vector3d infinite = Eigen::Vector3d::Constant(HUGE_VAL);
    check.standardErrorCamTc = check.standardErrorTrChart = {infinite, infinite};
  }
  check.t95 = StudentHalfWidth95(Freedom(solution.Used()));
}

void FillSolution(const Evidence& evidence, const Solution& solution, CrossCheck& check) {
  check.solved = true;
  check.used = UsedPhotographs(evidence.loops, solution);
  check.Transform_Cam_Tc = solution.Transform_Cam_Tc.matrix();
  check.Transform_Tr_Chart = solution.Transform_Tr_Chart.matrix();
  check.trackerNoiseDegrees = std::sqrt(solution.noise.rotation) / kDegree;
  check.trackerNoiseMm = std::sqrt(solution.noise.translation) * 1e3;
  check.trackerNoiseApart = solution.noise.isApart;
  if (check.diversity.amplification <= kMostAmplification) {
    check.mounting = MountingOf(solution.Transform_Tr_Chart);
  }
}

// With the size of the squares free, which distinguishes a wrong size from a wrong mounting.
std::optional<Solution> FreeSquareSize(const Evidence& evidence, const Solution& solution) {
  Solution from = solution;
  from.unknowns.squareSize = true;
  SolveOptions options;
  options.first = solution.used;
  return Solve(evidence.loops, from, options);
}

void FillSquareSize(const Evidence& evidence, const std::optional<Solution>& free,
                    CrossCheck& check) {
  if (!free) {
    check.square = {std::nan(""), std::nan(""), std::nan("")};
    return;
  }
  const double variance = FullCovariance(*free, evidence)(12, 12);
  check.square.factor = free->squareFactor;
  check.square.standardError = std::sqrt(variance);
  check.square.p =
      StudentTail((free->squareFactor - 1) / std::sqrt(variance), Freedom(free->Used()));
}

void FillScale(const Observations& observations, const Solution& solution, CrossCheck& check) {
  constexpr double kPermille = 1e-3;
  const Twist twist = kPermille * solution.byNuisances.topRows<6>().rightCols<1>();
  const Offset moved = Between(Exp(twist) * solution.Transform_Cam_Tc, solution.Transform_Cam_Tc);
  check.scale = {observations.scaleUncertainty, moved.offMm, moved.offDegrees};
}

void FillMounting(const Observations& observations, const Evidence& evidence,
                  const Solution& solution, const std::optional<Solution>& free,
                  CrossCheck& check) {
  if (!observations.mounting) {
    return;
  }
  const Pose stated = TransformOf(*observations.mounting);
  NominalMounting& nominal = check.nominalMounting.emplace();
  static_cast<Offset&>(nominal) = CompareTrChart(solution, check.covarianceTrChartTwist, stated);
  nominal.pScaleFree =
      free ? CompareTrChart(*free, FullCovariance(*free, evidence).block<6, 6>(6, 6), stated).p
           : nominal.p;
  nominal.likelyMistake =
      LikelyMistake(*observations.mounting, evidence.corners.board, solution.Transform_Tr_Chart);
}

// How far off the result is: the library's, or otherwise the one that follows from the stated
// mounting.
std::optional<Offset> ResultOffset(const Observations& observations, const Evidence& evidence,
                                   const Solution& solution, const CrossCheck& check) {
  if (check.library || !observations.mounting) {
    return check.library;
  }
  Solution from = solution;
  from.unknowns.mounting = false;
  from.Transform_Tr_Chart = TransformOf(*observations.mounting);
  from.Transform_Cam_Tc =
      solution.Transform_Cam_Tc * solution.Transform_Tr_Chart * from.Transform_Tr_Chart.inverse();
  SolveOptions options;
  options.first = solution.used;
  options.isFixed = true;
  const auto held = Solve(evidence.loops, from, options);
  // If nothing fits the stated mounting: as far off as the mounting itself moves it.
  return Between(held ? held->Transform_Cam_Tc : from.Transform_Cam_Tc, solution.Transform_Cam_Tc);
}

// Root mean square distance of the chart's positions from their mean.
double ChartSpread(const Loops& loops) {
  Eigen::Vector3d mean = Eigen::Vector3d::Zero();
  double squares = 0;
  for (const Loop& loop : loops) {
    mean += loop.Transform_Cam_Chart.translation() / static_cast<double>(loops.size());
  }
  for (const Loop& loop : loops) {
    squares += (loop.Transform_Cam_Chart.translation() - mean).squaredNorm();
  }
  return std::sqrt(squares / static_cast<double>(loops.size()));
}

void FillComparisons(const Observations& observations, const std::optional<Pose>& library,
                     CrossCheck& check) {
  const bool isKnown = check.solved && check.diversity.amplification <= kMostAmplification;
  const Pose unknown(Eigen::Matrix4d(Eigen::Matrix4d::Constant(std::nan(""))));
  const Pose Transform_Cam_Tc = isKnown ? Pose(check.Transform_Cam_Tc) : unknown;
  const Pose Transform_Tr_Chart = isKnown ? Pose(check.Transform_Tr_Chart) : unknown;
  const double t95 = isKnown ? check.t95 : std::nan("");
  check.comparisonCamTc =
      CompareAxesCamTc(library.value_or(unknown), Transform_Cam_Tc, check.standardErrorCamTc, t95);
  check.comparisonTrChart =
      CompareAxesTrChart(observations.mounting ? TransformOf(*observations.mounting) : unknown,
                         Transform_Tr_Chart, check.standardErrorTrChart, t95);
}

// With what the photographs show besides both transforms: a tracker that moved, or squares of
// another size.
Solution WithWhatIsFound(const Evidence& evidence, const Solution& solution,
                         const std::optional<Solution>& free, FindingInputs& inputs,
                         CrossCheck& check) {
  inputs.loose = FindLooseTracker(evidence.loops, solution);
  if (inputs.loose) {
    return solution;
  }
  if (const auto step = FindStep(evidence.loops, solution)) {
    check.step = step->step;
    return step->solution;
  }
  return IsSquareSizeOff(check, ChartSpread(evidence.loops)) ? *free : solution;
}

void Fill(const Observations& observations, const Evidence& evidence,
          const std::optional<Pose>& library, FindingInputs& inputs, CrossCheck& check) {
  check.diversity = DiversityOf(evidence.loops, *inputs.solution);
  FillScale(observations, *inputs.solution, check);
  const std::optional<Solution> free = FreeSquareSize(evidence, *inputs.solution);
  FillSquareSize(evidence, free, check);
  inputs.chartSpreadMetres = ChartSpread(evidence.loops);
  check.halves = CompareHalves(evidence, *inputs.solution);
  Solution& solution = *inputs.solution;
  solution = WithWhatIsFound(evidence, solution, free, inputs, check);
  solution.inflation = std::max(1.0, ClusterInflation(evidence.loops, solution));
  FillSolution(evidence, solution, check);
  FillUncertainty(evidence, solution, check);
  ComparePhotographs(observations, evidence, solution, check.perPhotograph);
  if (check.diversity.amplification <= kMostAmplification) {
    check.calibration = CalibrationOf(observations, evidence, solution);
  }

  if (library) {
    check.library = CompareCamTc(solution, check.covarianceCamTcTwist, *library);
  }
  FillMounting(observations, evidence, solution, free, check);
  check.imageCells = CellsOf(observations, evidence);
  for (const double distance : DistancesOf(observations.atMetres, evidence.loops)) {
    check.onScreen.push_back(OnScreenAt(distance, evidence, solution, check.imageCells, library));
  }
  inputs.lensNotSeen = FindLensNotSeen(evidence, check.imageCells);
  Suggestions suggestions = SuggestViews(evidence, solution);
  check.suggestedViews = std::move(suggestions.views);
  check.photographsToHalve = suggestions.photographsToHalve;
  inputs.result = ResultOffset(observations, evidence, solution, check);
  if (!inputs.loose && !check.step && check.diversity.amplification <= kMostAmplification) {
    inputs.flaw = ClearestFlaw(check, evidence, solution);
    inputs.notStill = FindNotStill(observations, check.perPhotograph);
    check.delayKnownToSeconds = DelayKnownToSeconds(evidence.loops, solution);
  }
  if (inputs.flaw || !evidence.corners.flaws.empty()) {
    inputs.withoutFlaws = TakeFlawsAway(observations, evidence, solution, inputs.flaw, library);
  }
  inputs.atChart =
      OnScreenAt(MeanDistance(evidence.loops), evidence, solution, check.imageCells, library);
}

// A solution that is almost undetermined lies along a long valley, of which its covariance shows
// only the slope at one place.
void ForgetWhatIsUncertain(CrossCheck& check) {
  if (check.diversity.amplification <= kMostAmplification) {
    return;
  }
  const double unknown = std::nan("");
  for (std::optional<Offset>* offset : {&check.library, &check.halves}) {
    if (*offset) {
      (*offset)->p = unknown;
    }
  }
  if (check.nominalMounting) {
    check.nominalMounting->p = check.nominalMounting->pScaleFree = unknown;
    check.nominalMounting->likelyMistake = std::nullopt;
  }
  check.square.p = unknown;
  check.onScreen.clear();
}

}  // namespace

CrossCheck Check(const Observations& observations) {
  CheckObservations(observations);
  const Evidence evidence = Gather(observations);
  CrossCheck check;
  check.photographs = observations.photographs.size();
  check.perPhotograph = DescribePhotographs(observations, evidence);
  check.cornerNoisePixels = evidence.corners.noisePixels;
  const Eigen::Matrix<double, 6, 1> lens =
      evidence.nuisanceCovariance.diagonal().head<6>().cwiseSqrt();
  check.lens = {lens[0], lens[1], lens[2], lens[3], lens[4], lens[5]};

  std::optional<Pose> library;
  if (observations.library && observations.library->allFinite()) {
    library = PoseOf(*observations.library);
  }
  FindingInputs inputs;
  inputs.goodEnough = observations.goodEnough;
  inputs.solution = SolveShoot(evidence);
  if (inputs.solution) {
    Fill(observations, evidence, library, inputs, check);
    ForgetWhatIsUncertain(check);
  }
  FillComparisons(observations, library, check);
  inputs.misread = FindMisreadRows(observations, evidence);
  check.findings = FindingsOf(check, evidence, inputs);
  return check;
}

}  // namespace trackedcam::crosscheck
