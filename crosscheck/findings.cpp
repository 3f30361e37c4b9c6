#include "crosscheck/findings.h"

#include <algorithm>
#include <cmath>

#include "crosscheck/flaw_findings.h"
#include "crosscheck/uncertainty.h"

namespace trackedcam::crosscheck {
namespace {

// More is not noise: the transforms do not fit at all.
constexpr double kMostNoiseMm = 20;
constexpr double kMostNoiseDegrees = 2;

constexpr double kNotableAmplification = 5;
constexpr double kFarBeyondLimit = 2;  // times the limit at which a photograph is left out
constexpr double kFarMm = 2;           // of a single photograph
constexpr double kFarDegrees = 0.2;
constexpr double kManyBad = 0.3;  // share of the photographs
constexpr double kNotableSquare = 0.002;
constexpr double kSureSquare = 0.01;
constexpr double kLeastSpread = 0.05;  // metres that the chart must have moved to show the squares
constexpr double kNoisyMm = 2;
constexpr double kNoisyDegrees = 0.2;
constexpr double kMuchNotSeen = 0.25;  // share of the image: more than a careful shoot leaves

// Photographs from a distance that is smaller by less are no closer ones.
constexpr double kCloser = 0.7;

bool IsNotable(const Offset& offset, const Accuracy& goodEnough) {
  return offset.offMm >= std::min(kNotableMm, goodEnough.mm / 2) ||
         offset.offDegrees >= std::min(kNotableDegrees, goodEnough.degrees / 2);
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
  // The result may be right: it cannot be checked.
  return Finding{Severity::kWarning,
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

bool IsOff(const CrossCheck& check) {
  return (check.library && check.library->p < kCertain) ||
         (check.nominalMounting && check.nominalMounting->p < kCertain &&
          check.nominalMounting->pScaleFree < kCertain);
}

bool HasFlaws(const Evidence& evidence, const FindingInputs& inputs) {
  return inputs.flaw || !evidence.corners.flaws.empty();
}

std::optional<Finding> MountingFinding(const CrossCheck& check, const FindingInputs& inputs) {
  if (!check.nominalMounting || !inputs.result || !IsRotatedEnough(check)) {
    return std::nullopt;
  }
  const NominalMounting& stated = *check.nominalMounting;
  const Offset& result = *inputs.result;
  if (!(stated.p < kCertain && stated.pScaleFree < kCertain &&
        IsNotable(result, inputs.goodEnough))) {
    return std::nullopt;
  }
  return Finding{IsGrave(result) ? Severity::kError : Severity::kWarning,
                 MountingOff{stated.offMm, stated.offDegrees, result.offMm, result.offDegrees,
                             stated.p, stated.pScaleFree, stated.likelyMistake}};
}

std::optional<Finding> LibraryFinding(const CrossCheck& check, const FindingInputs& inputs) {
  if (!check.library || check.step || !IsRotatedEnough(check)) {
    return std::nullopt;
  }
  const Offset& library = *check.library;
  if (!(library.p < kCertain && IsNotable(library, inputs.goodEnough))) {
    return std::nullopt;
  }
  const bool isUnknown = !check.nominalMounting;
  return Finding{IsGrave(library) ? Severity::kError : Severity::kWarning,
                 LibraryApart{library.offMm, library.offDegrees, library.p, isUnknown}};
}

// Indices in Observations::photographs, the worst first.
std::vector<std::size_t> FindBadPhotographs(const CrossCheck& check, const Evidence& evidence,
                                            const Solution& solution) {
  const double limit = kFarBeyondLimit * DisagreementLimit(solution.Used());
  std::vector<std::size_t> bad;
  for (std::size_t i = 0; i < evidence.loops.size(); ++i) {
    const bool isFar = !solution.used[i] && solution.disagreement[i] > limit;
    for (const std::size_t index : evidence.loops[i].photographs) {
      const PerPhotograph& photograph = check.perPhotograph[index];
      if (isFar && (photograph.mm >= kFarMm || photograph.degrees >= kFarDegrees)) {
        bad.push_back(index);
      }
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
  const std::vector<std::size_t> bad = FindBadPhotographs(check, evidence, *inputs.solution);
  if (bad.empty()) {
    return std::nullopt;
  }
  const double share = static_cast<double>(bad.size()) / static_cast<double>(check.photographs);
  const PerPhotograph& worst = check.perPhotograph[bad.front()];
  return Finding{share > kManyBad ? Severity::kError : Severity::kWarning,
                 BadPhotographs{share, worst.mm, worst.degrees, bad}};
}

Finding LooseFinding(const TrackerLoose& loose) {
  const bool isGrave = loose.mm >= kGraveMm || loose.degrees >= kGraveDegrees;
  return {isGrave ? Severity::kError : Severity::kWarning, loose};
}

// A flaw that explains why the result is off is as serious as that.
void Raise(const FindingInputs& inputs, std::vector<Finding>& flaws) {
  if (!flaws.empty() && inputs.result && IsNotable(*inputs.result, inputs.goodEnough)) {
    Severity& severity = flaws.front().severity;
    severity = std::min(severity, IsGrave(*inputs.result) ? Severity::kError : Severity::kWarning);
  }
}

std::optional<Finding> SquareFinding(const CrossCheck& check, const FindingInputs& inputs,
                                     bool isAlone) {
  if (!IsSquareSizeOff(check, inputs.chartSpreadMetres) || check.step) {
    return std::nullopt;
  }
  // What else is wrong may explain a part of it.
  const SquareSize& square = check.square;
  return Finding{
      Severity::kWarning,
      SquareSizeOff{square.factor, isAlone ? square.standardError : std::nan(""), square.p}};
}

std::optional<Finding> HalvesFinding(const CrossCheck& check, const FindingInputs& inputs) {
  if (!check.halves || check.step) {
    return std::nullopt;
  }
  const Offset& halves = *check.halves;
  if (halves.p < kCertain && IsNotable(halves, inputs.goodEnough)) {
    return Finding{Severity::kWarning, HalvesDiffer{halves.offMm, halves.offDegrees, halves.p}};
  }
  return std::nullopt;
}

// The larger of translation and rotation, in parts of what is good enough.
double SizeOf(const Accuracy& accuracy, const Accuracy& goodEnough) {
  return std::max(accuracy.mm / goodEnough.mm, accuracy.degrees / goodEnough.degrees);
}

Accuracy HalfWidth95(const StandardError& error, double t95) {
  return {t95 * error.translationMm.maxCoeff(), t95 * error.rotationDegrees.maxCoeff()};
}

double WithoutPart(double whole, double part) {
  return std::sqrt(std::max(0.0, whole * whole - part * part));
}

std::optional<Finding> AccuracyFinding(const CrossCheck& check, const Evidence& evidence,
                                       const FindingInputs& inputs) {
  const Accuracy found = HalfWidth95(check.standardErrorCamTc, check.t95);
  if (!(SizeOf(found, inputs.goodEnough) > 1) || !IsRotatedEnough(check) || check.step) {
    return std::nullopt;
  }
  const Solution& solution = *inputs.solution;
  Uncertain uncertain;
  uncertain.needed = inputs.goodEnough;
  uncertain.found = found;
  uncertain.byLens = HalfWidth95(
      StandardErrorOfLeftTwist(CovarianceFromLens(solution, evidence), solution.Transform_Cam_Tc),
      check.t95);
  uncertain.byTrackers = {WithoutPart(found.mm, uncertain.byLens.mm),
                          WithoutPart(found.degrees, uncertain.byLens.degrees)};
  uncertain.pixels = inputs.atChart ? inputs.atChart->middle.pixels : std::nan("");
  uncertain.distanceMetres = MeanDistance(evidence.loops);
  if (!check.suggestedViews.empty()) {
    const double best = check.suggestedViews.front().distanceMetres;
    if (best < kCloser * uncertain.distanceMetres) {
      uncertain.closerMetres = best;
    }
  }
  const bool isLens =
      SizeOf(uncertain.byLens, inputs.goodEnough) > SizeOf(uncertain.byTrackers, inputs.goodEnough);
  return Finding{Severity::kWarning, isLens ? FindingKind(LensUncertain{uncertain})
                                            : FindingKind(TrackersUncertain{uncertain})};
}

std::optional<Finding> NotSeenFinding(const FindingInputs& inputs) {
  if (!inputs.lensNotSeen) {
    return std::nullopt;
  }
  const bool isMuch = inputs.lensNotSeen->share >= kMuchNotSeen;
  return Finding{isMuch ? Severity::kWarning : Severity::kNote, *inputs.lensNotSeen};
}

// The clearer name of the two is that of a delay.
std::optional<Finding> MotionFinding(const FindingInputs& inputs) {
  if (!inputs.notStill || (inputs.flaw && inputs.flaw->flaw == TrackerFlaw::kDelay)) {
    return std::nullopt;
  }
  const bool isNotable = inputs.notStill->mm >= kNotableMm;
  return Finding{isNotable ? Severity::kWarning : Severity::kNote, *inputs.notStill};
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
  // Half of the photographs with a loose tracker contradict the other half.
  const bool areBad = !inputs.loose && add(PhotographsFinding(check, evidence, inputs));
  std::vector<Finding> flaws = CornerFindings(check, evidence, *inputs.solution);
  if (inputs.flaw) {
    flaws.push_back(*TrackerFinding(check, evidence, *inputs.solution, inputs.flaw));
  }
  // A loose tracker, a flaw, or a wrong mounting explains a result that is off.
  const bool isExplained = HasFlaws(evidence, inputs) &&
                           !(inputs.withoutFlaws.pMounting < kCertain) &&
                           !(inputs.withoutFlaws.pLibrary < kCertain);
  if (isExplained && IsOff(check)) {
    Raise(inputs, flaws);
  } else if (!add(MountingFinding(check, inputs)) && !inputs.loose) {
    add(LibraryFinding(check, inputs));
  }
  findings.insert(findings.end(), flaws.begin(), flaws.end());
  add(NotSeenFinding(inputs));
  bool isNamed = add(MotionFinding(inputs)) || inputs.flaw;
  if (inputs.loose) {
    isNamed = add(LooseFinding(*inputs.loose));
  }
  // Errors without a name may be the drift that the halves show.
  if (!isNamed && IsRotatedEnough(check) && !check.step && !add(HalvesFinding(check, inputs))) {
    isNamed = add(TrackerFinding(check, evidence, *inputs.solution, std::nullopt));
  }
  const bool isSquareOff = add(SquareFinding(check, inputs, !areBad && !isNamed));
  // Squares of another size look like noise.
  if (!isSquareOff) {
    add(NoiseFinding(check));
  }
  add(AccuracyFinding(check, evidence, inputs));
  return findings;
}

}  // namespace

bool IsSquareSizeOff(const CrossCheck& check, double chartSpreadMetres) {
  return check.square.p < kSureSquare && std::abs(check.square.factor - 1) >= kNotableSquare &&
         chartSpreadMetres >= kLeastSpread && IsRotatedEnough(check);
}

std::vector<Finding> FindingsOf(const CrossCheck& check, const Evidence& evidence,
                                const FindingInputs& inputs) {
  std::vector<Finding> findings = FindingsInOrder(check, evidence, inputs);
  std::stable_sort(findings.begin(), findings.end(),
                   [](const auto& a, const auto& b) { return a.severity < b.severity; });
  return findings;
}

}  // namespace trackedcam::crosscheck
