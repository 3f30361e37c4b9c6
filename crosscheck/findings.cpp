#include "crosscheck/findings.h"

#include <algorithm>
#include <cmath>

#include "crosscheck/uncertainty.h"

namespace trackedcam::crosscheck {
namespace {

// From these differences on, the result is not accurate enough to pass without a finding.
constexpr double kNotableMm = 1;
constexpr double kNotableDegrees = 0.1;
// From these on, it is an error.
constexpr double kGraveMm = 2;
constexpr double kGraveDegrees = 0.2;
// More is not noise: the transforms do not fit at all.
constexpr double kMostNoiseMm = 20;
constexpr double kMostNoiseDegrees = 2;

constexpr double kNotableAmplification = 5;
constexpr double kFarBeyondLimit = 2;  // times the limit at which a photograph is left out
constexpr double kFarMm = 2;           // of a single photograph
constexpr double kFarDegrees = 0.2;
constexpr double kManyBad = 0.3;  // share of the photographs
constexpr double kNotableSquare = 0.01;
constexpr double kLeastSpread = 0.05;  // metres that the chart must have moved to show the squares
constexpr double kNoisyMm = 2;
constexpr double kNoisyDegrees = 0.2;

bool IsNotable(double mm, double degrees) {
  return mm >= kNotableMm || degrees >= kNotableDegrees;
}

bool IsGrave(const Offset& offset) {
  return offset.offMm >= kGraveMm || offset.offDegrees >= kGraveDegrees;
}

bool IsRotatedEnough(const CrossCheck& check) {
  return check.diversity.amplification <= kMostAmplification;
}

bool Agrees(const CrossCheck& check) {
  return check.solved && (2 * check.used >= check.photographs || check.step) &&
         check.trackerNoiseMm < kMostNoiseMm && check.trackerNoiseDegrees < kMostNoiseDegrees;
}

Finding AgreementFinding(const CrossCheck& check) {
  return {Severity::kError, NoAgreement{check.photographs, check.used,
                                        check.solved ? check.trackerNoiseMm : std::nan(""),
                                        check.solved ? check.trackerNoiseDegrees : std::nan("")}};
}

std::optional<Finding> RotationFinding(const CrossCheck& check) {
  const Diversity& diversity = check.diversity;
  if (!(diversity.amplification > kNotableAmplification)) {
    return std::nullopt;
  }
  return Finding{IsRotatedEnough(check) ? Severity::kWarning : Severity::kError,
                 TooLittleRotation{diversity.amplification, diversity.rotationDegrees,
                                   diversity.axisInChart, diversity.axes}};
}

std::optional<Finding> StepFinding(const CrossCheck& check) {
  if (!check.step) {
    return std::nullopt;
  }
  const Step& step = *check.step;
  return Finding{Severity::kError,
                 TrackerMoved{step.tracker, step.before, step.mm, step.degrees, step.gain}};
}

std::optional<Finding> MountingFinding(const CrossCheck& check, const FindingInputs& inputs) {
  if (!check.nominalMounting || !inputs.result || check.step || !IsRotatedEnough(check)) {
    return std::nullopt;
  }
  const NominalMounting& stated = *check.nominalMounting;
  const Offset& result = *inputs.result;
  if (!(stated.p < kCertain && stated.pScaleFree < kCertain &&
        IsNotable(result.offMm, result.offDegrees))) {
    return std::nullopt;
  }
  return Finding{IsGrave(result) ? Severity::kError : Severity::kNote,
                 MountingOff{stated.offMm, stated.offDegrees, result.offMm, result.offDegrees,
                             stated.p, stated.pScaleFree, stated.likelyMistake}};
}

std::optional<Finding> LibraryFinding(const CrossCheck& check) {
  if (!check.library || check.step || !IsRotatedEnough(check)) {
    return std::nullopt;
  }
  const Offset& library = *check.library;
  if (!(library.p < kCertain && IsNotable(library.offMm, library.offDegrees))) {
    return std::nullopt;
  }
  // An unknown mounting may be off by this much; with a right one the difference is harmless.
  const bool isUnknown = !check.nominalMounting;
  return Finding{isUnknown && IsGrave(library) ? Severity::kError : Severity::kWarning,
                 LibraryApart{library.offMm, library.offDegrees, library.p, isUnknown}};
}

// Indices in Observations::photographs, the worst first.
std::vector<std::size_t> FindBadPhotographs(const CrossCheck& check, const Evidence& evidence,
                                            const Solution& solution) {
  std::vector<std::size_t> bad;
  for (std::size_t i = 0; i < evidence.loops.size(); ++i) {
    const std::size_t index = evidence.loops[i].photograph;
    const PerPhotograph& photograph = check.perPhotograph[index];
    if (!solution.used[i] && solution.disagreement[i] > kFarBeyondLimit * DisagreementLimit() &&
        (photograph.mm >= kFarMm || photograph.degrees >= kFarDegrees)) {
      bad.push_back(index);
    }
  }
  for (std::size_t i = 0; i < check.photographs; ++i) {
    const auto& why = check.perPhotograph[i].whyLeftOut;
    if (why == WhyLeftOut::kNotNumbers || why == WhyLeftOut::kNoPose) {
      bad.push_back(i);
    }
  }
  // NaN is worst of all.
  const auto badness = [&check](std::size_t i) {
    const PerPhotograph& photograph = check.perPhotograph[i];
    return std::isfinite(photograph.mm) ? photograph.mm / kFarMm + photograph.degrees / kFarDegrees
                                        : HUGE_VAL;
  };
  std::stable_sort(bad.begin(), bad.end(),
                   [&](std::size_t a, std::size_t b) { return badness(a) > badness(b); });
  return bad;
}

std::optional<Finding> PhotographsFinding(const CrossCheck& check, const Evidence& evidence,
                                          const FindingInputs& inputs) {
  const std::vector<std::size_t> bad =
      FindBadPhotographs(check, evidence, inputs.withStep ? *inputs.withStep : *inputs.solution);
  if (bad.empty()) {
    return std::nullopt;
  }
  const double share = static_cast<double>(bad.size()) / static_cast<double>(check.photographs);
  const PerPhotograph& worst = check.perPhotograph[bad.front()];
  return Finding{share > kManyBad ? Severity::kError : Severity::kWarning,
                 BadPhotographs{share, worst.mm, worst.degrees, bad}};
}

std::optional<Finding> SquareFinding(const CrossCheck& check, const FindingInputs& inputs) {
  const SquareSize& square = check.square;
  if (square.p < kCertain && std::abs(square.factor - 1) >= kNotableSquare &&
      inputs.chartSpreadMetres >= kLeastSpread && !check.step) {
    return Finding{Severity::kWarning,
                   SquareSizeOff{square.factor, square.standardError, square.p}};
  }
  return std::nullopt;
}

std::optional<Finding> HalvesFinding(const CrossCheck& check) {
  if (!check.halves || check.step) {
    return std::nullopt;
  }
  const Offset& halves = *check.halves;
  if (halves.p < kCertain && IsNotable(halves.offMm, halves.offDegrees)) {
    return Finding{Severity::kWarning, HalvesDiffer{halves.offMm, halves.offDegrees, halves.p}};
  }
  return std::nullopt;
}

std::optional<Finding> LensFinding(const CrossCheck& check, const Evidence& evidence,
                                   const FindingInputs& inputs) {
  const Solution& solution = *inputs.solution;
  const Pose& pose = solution.Transform_Cam_Tc;
  const Eigen::MatrixXd carried =
      solution.byLens * evidence.lensCovariance * solution.byLens.transpose();
  const StandardError lens = StandardErrorOfLeftTwist(carried.topLeftCorner<6, 6>(), pose);
  const StandardError rest =
      StandardErrorOfLeftTwist(solution.covariance.topLeftCorner<6, 6>(), pose);
  const double mm = check.t95 * lens.translationMm.maxCoeff();
  const double degrees = check.t95 * lens.rotationDegrees.maxCoeff();
  const bool isTranslationUncertain =
      mm >= kNotableMm && lens.translationMm.norm() > rest.translationMm.norm();
  const bool isRotationUncertain =
      degrees >= kNotableDegrees && lens.rotationDegrees.norm() > rest.rotationDegrees.norm();
  if (isTranslationUncertain || isRotationUncertain) {
    const auto& atChart = inputs.atChart;
    return Finding{Severity::kWarning,
                   LensUncertain{mm, degrees, atChart ? atChart->fromLens : std::nan(""),
                                 atChart ? atChart->distanceMetres : std::nan("")}};
  }
  return std::nullopt;
}

std::optional<Finding> NoiseFinding(const CrossCheck& check) {
  if (!check.step &&
      (check.trackerNoiseMm > kNoisyMm || check.trackerNoiseDegrees > kNoisyDegrees)) {
    return Finding{Severity::kWarning,
                   TrackersNoisy{check.trackerNoiseMm, check.trackerNoiseDegrees}};
  }
  return std::nullopt;
}

std::vector<Finding> FindingsInOrder(const CrossCheck& check, const Evidence& evidence,
                                     const FindingInputs& inputs) {
  if (inputs.misread) {
    return {{Severity::kError, *inputs.misread}};
  }
  std::vector<Finding> findings;
  const auto add = [&](const std::optional<Finding>& finding) {
    if (finding) {
      findings.push_back(*finding);
    }
    return finding.has_value();
  };
  if (!Agrees(check)) {
    add(AgreementFinding(check));
    add(RotationFinding(check));
    return findings;
  }
  add(RotationFinding(check));
  add(StepFinding(check));
  add(PhotographsFinding(check, evidence, inputs));
  // A wrong mounting explains a result that is off.
  if (!add(MountingFinding(check, inputs))) {
    add(LibraryFinding(check));
  }
  const bool isSquareOff = add(SquareFinding(check, inputs));
  add(HalvesFinding(check));
  add(LensFinding(check, evidence, inputs));
  // Squares of another size look like noise.
  if (!isSquareOff) {
    add(NoiseFinding(check));
  }
  return findings;
}

}  // namespace

std::vector<Finding> FindingsOf(const CrossCheck& check, const Evidence& evidence,
                                const FindingInputs& inputs) {
  std::vector<Finding> findings = FindingsInOrder(check, evidence, inputs);
  std::stable_sort(findings.begin(), findings.end(),
                   [](const auto& a, const auto& b) { return a.severity < b.severity; });
  return findings;
}

}  // namespace trackedcam::crosscheck
