#include "crosscheck/shoot_findings.h"

#include <algorithm>
#include <cmath>

#include "crosscheck/comparison.h"
#include "crosscheck/solve.h"
#include "crosscheck/worth.h"

namespace trackedcam::crosscheck {
namespace {

constexpr double kFarBeyondLimit = 2;  // times the limit at which a photograph is left out
constexpr double kFarMm = 2;           // of a single photograph, and
constexpr double kFarDegrees = 0.2;
constexpr double kManyBad = 0.3;  // share of the photographs
constexpr double kNoisyMm = 2;
constexpr double kNoisyDegrees = 0.2;
constexpr double kLittleTurning = 5;  // amplification
constexpr double kWorthSquare = 0.01;
constexpr double kSquareSpread = 0.05;  // metres that the chart must have moved

}  // namespace

std::optional<Finding> TooLittleTurning(const CrossCheck& check) {
  const double amplification = check.diversity.amplification;
  if (!(amplification > kLittleTurning)) {
    return std::nullopt;
  }
  const Diversity& diversity = check.diversity;
  const Eigen::Vector3d& axis = diversity.turnAboutInChart;
  return Finding{FindingId::kTooLittleTurning,
                 amplification > kMostAmplification ? Severity::kError : Severity::kWarning,
                 {{"amplification", amplification},
                  {"turnDegrees", diversity.turnDegrees},
                  {"axisX", axis.x()},
                  {"axisY", axis.y()},
                  {"axisZ", axis.z()},
                  {"axes", static_cast<double>(diversity.axesToTurnAbout)}},
                 {},
                 ""};
}

std::optional<Finding> TrackerMoved(const CrossCheck& check) {
  if (!check.step) {
    return std::nullopt;
  }
  const Step& step = *check.step;
  return Finding{FindingId::kTrackerMoved,
                 Severity::kError,
                 {{"before", static_cast<double>(step.before)},
                  {"mm", step.mm},
                  {"degrees", step.degrees},
                  {"gain", step.gain}},
                 {step.before},
                 Name(step.tracker)};
}

std::optional<Finding> BadPhotographs(const CrossCheck& check, const Evidence& evidence,
                                      const Grounds& grounds) {
  const Solution& solution = grounds.withStep ? *grounds.withStep : *grounds.solution;
  std::vector<std::size_t> bad;
  for (std::size_t i = 0; i < evidence.loops.size(); ++i) {
    const std::size_t photograph = evidence.loops[i].photograph;
    const PerPhotograph& figures = check.perPhotograph[photograph];
    if (!solution.used[i] && solution.disagreement[i] > kFarBeyondLimit * DisagreementLimit() &&
        (figures.mm >= kFarMm || figures.degrees >= kFarDegrees)) {
      bad.push_back(photograph);
    }
  }
  for (std::size_t i = 0; i < check.photographs; ++i) {
    const auto& why = check.perPhotograph[i].why;
    if (why == "notNumbers" || why == "noPose") {
      bad.push_back(i);
    }
  }
  if (bad.empty()) {
    return std::nullopt;
  }
  // What is not a number is worst of all.
  const auto badness = [&check](std::size_t i) {
    const PerPhotograph& figures = check.perPhotograph[i];
    return std::isfinite(figures.mm) ? figures.mm / kFarMm + figures.degrees / kFarDegrees
                                     : HUGE_VAL;
  };
  std::stable_sort(bad.begin(), bad.end(),
                   [&](std::size_t a, std::size_t b) { return badness(a) > badness(b); });
  const double share = static_cast<double>(bad.size()) / static_cast<double>(check.photographs);
  const PerPhotograph& worst = check.perPhotograph[bad.front()];
  return Finding{FindingId::kBadPhotographs,
                 share > kManyBad ? Severity::kError : Severity::kWarning,
                 {{"share", share}, {"worstMm", worst.mm}, {"worstDegrees", worst.degrees}},
                 bad,
                 ""};
}

std::optional<Finding> WrongSquareSize(const CrossCheck& check, const Grounds& grounds) {
  const SquareSize& square = check.square;
  if (square.p < kRejected && std::abs(square.factor - 1) >= kWorthSquare &&
      grounds.chartSpreadMetres >= kSquareSpread && !check.step) {
    return Finding{
        FindingId::kSquareSize,
        Severity::kWarning,
        {{"factor", square.factor}, {"standardError", square.standardError}, {"p", square.p}},
        {},
        ""};
  }
  return std::nullopt;
}

std::optional<Finding> HalvesDiffer(const CrossCheck& check) {
  if (!check.halves || check.step) {
    return std::nullopt;
  }
  const Offset& halves = *check.halves;
  if (halves.p < kRejected && IsWorth(halves.offMm, halves.offDegrees)) {
    return Finding{FindingId::kHalvesDiffer,
                   Severity::kWarning,
                   {{"offMm", halves.offMm}, {"offDegrees", halves.offDegrees}, {"p", halves.p}},
                   {},
                   ""};
  }
  return std::nullopt;
}

std::optional<Finding> LensUncertain(const CrossCheck& check, const Evidence& evidence,
                                     const Grounds& grounds) {
  const Solution& solution = *grounds.solution;
  const Pose& pose = solution.Transform_Cam_Tc;
  const Eigen::MatrixXd carried =
      solution.byLens * evidence.lensCovariance * solution.byLens.transpose();
  const StandardError lens = StandardErrorOfLeftTwist(carried.topLeftCorner<6, 6>(), pose);
  const StandardError rest =
      StandardErrorOfLeftTwist(solution.covariance.topLeftCorner<6, 6>(), pose);
  const double mm = check.t95 * lens.shiftMm.maxCoeff();
  const double degrees = check.t95 * lens.turnDegrees.maxCoeff();
  const bool shifts = mm >= kWorthMm && lens.shiftMm.norm() > rest.shiftMm.norm();
  const bool turns = degrees >= kWorthDegrees && lens.turnDegrees.norm() > rest.turnDegrees.norm();
  if (shifts || turns) {
    return Finding{
        FindingId::kLensUncertain,
        Severity::kWarning,
        {{"mm", mm},
         {"degrees", degrees},
         {"pixels", grounds.atChart ? grounds.atChart->fromLens : std::nan("")},
         {"distanceMetres", grounds.atChart ? grounds.atChart->distanceMetres : std::nan("")}},
        {},
        ""};
  }
  return std::nullopt;
}

std::optional<Finding> TrackersNoisy(const CrossCheck& check) {
  if (!check.step &&
      (check.trackerNoiseMm > kNoisyMm || check.trackerNoiseDegrees > kNoisyDegrees)) {
    return Finding{FindingId::kTrackersNoisy,
                   Severity::kWarning,
                   {{"mm", check.trackerNoiseMm}, {"degrees", check.trackerNoiseDegrees}},
                   {},
                   ""};
  }
  return std::nullopt;
}

}  // namespace trackedcam::crosscheck
