#include "crosscheck/findings.h"

#include <algorithm>
#include <cmath>

namespace trackedcam::crosscheck {
namespace {

constexpr double kCertain = 0.001;  // p below which chance is ruled out
constexpr double kNoteMm = 1;       // what is less is of no concern to anyone
constexpr double kNoteDegrees = 0.1;
constexpr double kErrorMm = 2;
constexpr double kErrorDegrees = 0.2;
constexpr double kDoubtfulAmplification = 5;
constexpr double kMostBad = 0.3;  // share of photographs
constexpr double kFarOffMm = 3;   // a photograph that is left out by less is an ordinary one
constexpr double kFarOffDegrees = 0.3;
constexpr double kLeastSquareError = 0.01;
constexpr double kLeastSpread = 0.05;  // metres
constexpr double kNoisyMm = 2;
constexpr double kNoisyDegrees = 0.2;

bool Exceeds(double mm, double degrees, double leastMm, double leastDegrees) {
  return mm >= leastMm || degrees >= leastDegrees;
}

Severity SeverityOf(double mm, double degrees) {
  return Exceeds(mm, degrees, kErrorMm, kErrorDegrees) ? Severity::kError : Severity::kNote;
}

void AddNoAgreement(const CrossCheck& check, std::vector<Finding>& findings) {
  findings.push_back({FindingId::kNoAgreement,
                      Severity::kError,
                      {{"photographs", static_cast<double>(check.photographs)},
                       {"used", static_cast<double>(check.used)},
                       {"mm", check.trackerNoiseMm},
                       {"degrees", check.trackerNoiseDegrees}},
                      {},
                      ""});
}

void AddReading(const Reading& reading, std::vector<Finding>& findings) {
  findings.push_back({FindingId::kReading,
                      Severity::kError,
                      {{"times", reading.times},
                       {"asReadMm", reading.asReadMm},
                       {"fittedMm", reading.fittedMm}},
                      {},
                      reading.id});
}

// Turns to either side spread the mean of the rotations: enough of them bring it down to 3.
double TurnFor(double amplification) {
  return amplification > 3 ? 35 : 20;
}

void AddTooLittleTurning(const CrossCheck& check, std::vector<Finding>& findings) {
  const double amplification = check.diversity.amplification;
  if (!(amplification > kDoubtfulAmplification)) {
    return;
  }
  const Eigen::Vector3d& axis = check.diversity.weakestAxisInChart;
  findings.push_back({FindingId::kTooLittleTurning,
                      amplification > kMostAmplification ? Severity::kError : Severity::kWarning,
                      {{"amplification", amplification},
                       {"turnDegrees", TurnFor(amplification)},
                       {"axisX", axis.x()},
                       {"axisY", axis.y()},
                       {"axisZ", axis.z()}},
                      {},
                      ""});
}

void AddTrackerMoved(const CrossCheck& check, std::vector<Finding>& findings) {
  if (check.step) {
    const Step& step = *check.step;
    findings.push_back({FindingId::kTrackerMoved,
                        Severity::kError,
                        {{"before", static_cast<double>(step.before)},
                         {"mm", step.mm},
                         {"degrees", step.degrees},
                         {"gain", step.gain}},
                        {step.before},
                        Name(step.tracker)});
  }
}

void AddMountingOff(const CrossCheck& check, std::vector<Finding>& findings) {
  const auto& mounting = check.nominalMounting;
  const auto& library = check.library;
  if (!mounting || check.step || check.diversity.amplification > kMostAmplification ||
      !(mounting->p < kCertain) || !(mounting->pScaleFree < kCertain)) {
    return;
  }
  // Without a result to compare the mounting itself is what is wrong.
  const double mm = library ? library->offMm : mounting->offMm;
  const double degrees = library ? library->offDegrees : mounting->offDegrees;
  if (Exceeds(mm, degrees, kNoteMm, kNoteDegrees)) {
    findings.push_back({FindingId::kMountingOff,
                        SeverityOf(mm, degrees),
                        {{"offMm", mounting->offMm},
                         {"offDegrees", mounting->offDegrees},
                         {"resultOffMm", mm},
                         {"resultOffDegrees", degrees},
                         {"p", mounting->p},
                         {"pScaleFree", mounting->pScaleFree}},
                        {},
                        mounting->perhaps.value_or("")});
  }
}

bool IsFarOff(const PerPhotograph& photograph) {
  return !photograph.used && (photograph.why || Exceeds(photograph.mm, photograph.degrees,
                                                        kFarOffMm, kFarOffDegrees));
}

void AddBadPhotographs(const CrossCheck& check, std::vector<Finding>& findings) {
  std::vector<std::size_t> bad;
  for (std::size_t i = 0; i < check.perPhotograph.size(); ++i) {
    if (IsFarOff(check.perPhotograph[i])) {
      bad.push_back(i);
    }
  }
  if (bad.empty()) {
    return;
  }
  const auto mm = [&](std::size_t i) {
    const double off = check.perPhotograph[i].mm;
    return std::isfinite(off) ? off : HUGE_VAL;
  };
  std::stable_sort(bad.begin(), bad.end(),
                   [&](std::size_t a, std::size_t b) { return mm(a) > mm(b); });
  double worstMm = 0;
  double worstDegrees = 0;
  for (const std::size_t i : bad) {
    worstMm = std::fmax(worstMm, check.perPhotograph[i].mm);
    worstDegrees = std::fmax(worstDegrees, check.perPhotograph[i].degrees);
  }
  const double share =
      static_cast<double>(bad.size()) / static_cast<double>(check.photographs);
  findings.push_back({FindingId::kBadPhotographs,
                      share > kMostBad ? Severity::kError : Severity::kWarning,
                      {{"share", share}, {"worstMm", worstMm}, {"worstDegrees", worstDegrees}},
                      bad,
                      ""});
}

void AddSquareSize(const CrossCheck& check, const Beyond& beyond, std::vector<Finding>& findings) {
  const SquareSize& square = check.square;
  if (square.p < kCertain && std::abs(square.factor - 1) >= kLeastSquareError &&
      beyond.chartSpreadMetres >= kLeastSpread) {
    findings.push_back({FindingId::kSquareSize,
                        Severity::kWarning,
                        {{"factor", square.factor},
                         {"standardError", square.standardError},
                         {"p", square.p}},
                        {},
                        ""});
  }
}

void AddHalvesDiffer(const CrossCheck& check, std::vector<Finding>& findings) {
  if (check.halves && !check.step && check.halves->p < kCertain &&
      Exceeds(check.halves->offMm, check.halves->offDegrees, kNoteMm, kNoteDegrees)) {
    findings.push_back({FindingId::kHalvesDiffer,
                        Severity::kWarning,
                        {{"offMm", check.halves->offMm},
                         {"offDegrees", check.halves->offDegrees},
                         {"p", check.halves->p}},
                        {},
                        ""});
  }
}

void AddLensUncertain(const CrossCheck& check, const Beyond& beyond,
                      std::vector<Finding>& findings) {
  if (beyond.lensIsLarger && !check.onScreen.empty() &&
      Exceeds(beyond.worstLensMm, beyond.worstLensDegrees, kNoteMm, kNoteDegrees)) {
    const OnScreen& far = check.onScreen.back();
    findings.push_back({FindingId::kLensUncertain,
                        Severity::kWarning,
                        {{"mm", beyond.worstLensMm},
                         {"degrees", beyond.worstLensDegrees},
                         {"pixels", far.fromLens},
                         {"distanceMetres", far.distanceMetres}},
                        {},
                        ""});
  }
}

void AddTrackersNoisy(const CrossCheck& check, std::vector<Finding>& findings) {
  if (check.trackerNoiseMm > kNoisyMm || check.trackerNoiseDegrees > kNoisyDegrees) {
    findings.push_back(
        {FindingId::kTrackersNoisy,
         Severity::kWarning,
         {{"mm", check.trackerNoiseMm}, {"degrees", check.trackerNoiseDegrees}},
         {},
         ""});
  }
}

void AddLibraryApart(const CrossCheck& check, std::vector<Finding>& findings) {
  const bool mountingIsOff =
      std::any_of(findings.begin(), findings.end(),
                  [](const Finding& finding) { return finding.id == FindingId::kMountingOff; });
  const auto& library = check.library;
  if (!mountingIsOff && library && !check.step && library->p < kCertain &&
      check.diversity.amplification <= kMostAmplification &&
      Exceeds(library->offMm, library->offDegrees, kNoteMm, kNoteDegrees)) {
    findings.push_back({FindingId::kLibraryApart,
                        SeverityOf(library->offMm, library->offDegrees) == Severity::kError
                            ? Severity::kWarning
                            : Severity::kNote,
                        {{"offMm", library->offMm},
                         {"offDegrees", library->offDegrees},
                         {"p", library->p}},
                        {},
                        ""});
  }
}

}  // namespace

std::vector<Finding> FindingsOf(const CrossCheck& check, const Beyond& beyond) {
  std::vector<Finding> findings;
  if (beyond.reading) {  // nothing else that is found of such rows means anything
    AddReading(*beyond.reading, findings);
    return findings;
  }
  if (!check.solved) {
    AddNoAgreement(check, findings);
    AddBadPhotographs(check, findings);
    return findings;
  }
  AddTooLittleTurning(check, findings);
  AddTrackerMoved(check, findings);
  AddMountingOff(check, findings);
  AddBadPhotographs(check, findings);
  AddSquareSize(check, beyond, findings);
  AddHalvesDiffer(check, findings);
  AddLensUncertain(check, beyond, findings);
  AddTrackersNoisy(check, findings);
  AddLibraryApart(check, findings);
  std::stable_sort(findings.begin(), findings.end(),
                   [](const Finding& a, const Finding& b) { return a.severity < b.severity; });
  return findings;
}

}  // namespace trackedcam::crosscheck
