#include "crosscheck/findings.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "crosscheck/shoot_findings.h"
#include "crosscheck/worth.h"

namespace trackedcam::crosscheck {
namespace {

constexpr double kGraveMm = 2;  // an error
constexpr double kGraveDegrees = 0.2;
constexpr double kHopelessMm = 20;  // such noise is no noise
constexpr double kHopelessDegrees = 2;

bool Agrees(const CrossCheck& check) {
  return check.solved && (2 * check.used >= check.photographs || check.step) &&
         check.trackerNoiseMm < kHopelessMm && check.trackerNoiseDegrees < kHopelessDegrees;
}

bool Turns(const CrossCheck& check) {
  return check.diversity.amplification <= kMostAmplification;
}

bool IsGrave(const Offset& offset) {
  return offset.offMm >= kGraveMm || offset.offDegrees >= kGraveDegrees;
}

Finding OtherReading(const Reading& reading) {
  return {
      FindingId::kReading,
      Severity::kError,
      {{"times", reading.times}, {"asReadMm", reading.asReadMm}, {"fittedMm", reading.fittedMm}},
      {},
      reading.id};
}

Finding NoAgreement(const CrossCheck& check) {
  return {FindingId::kNoAgreement,
          Severity::kError,
          {{"photographs", static_cast<double>(check.photographs)},
           {"used", static_cast<double>(check.used)},
           {"mm", check.solved ? check.trackerNoiseMm : std::nan("")},
           {"degrees", check.solved ? check.trackerNoiseDegrees : std::nan("")}},
          {},
          ""};
}

std::optional<Finding> MountingOff(const CrossCheck& check, const Grounds& grounds) {
  if (!check.nominalMounting || !grounds.result || check.step || !Turns(check)) {
    return std::nullopt;
  }
  const NominalMounting& stated = *check.nominalMounting;
  const Offset& result = *grounds.result;
  if (!(stated.p < kRejected && stated.pScaleFree < kRejected &&
        IsWorth(result.offMm, result.offDegrees))) {
    return std::nullopt;
  }
  return Finding{FindingId::kMountingOff,
                 IsGrave(result) ? Severity::kError : Severity::kNote,
                 {{"offMm", stated.offMm},
                  {"offDegrees", stated.offDegrees},
                  {"resultOffMm", result.offMm},
                  {"resultOffDegrees", result.offDegrees},
                  {"p", stated.p},
                  {"pScaleFree", stated.pScaleFree}},
                 {},
                 stated.perhaps.value_or("")};
}

std::optional<Finding> LibraryApart(const CrossCheck& check) {
  if (!check.library || check.step || !Turns(check)) {
    return std::nullopt;
  }
  const Offset& library = *check.library;
  if (!(library.p < kRejected && IsWorth(library.offMm, library.offDegrees))) {
    return std::nullopt;
  }
  // Where the mounting is not known it may be this far off; where it is right this is little.
  const bool isUnknown = !check.nominalMounting;
  return Finding{FindingId::kLibraryApart,
                 isUnknown && IsGrave(library) ? Severity::kError : Severity::kWarning,
                 {{"offMm", library.offMm}, {"offDegrees", library.offDegrees}, {"p", library.p}},
                 {},
                 isUnknown ? "mountingUnknown" : ""};
}

std::vector<Finding> FindingsInOrder(const CrossCheck& check, const Evidence& evidence,
                                     const Grounds& grounds) {
  if (grounds.reading) {
    return {OtherReading(*grounds.reading)};
  }
  std::vector<Finding> findings;
  // True where there is one.
  const auto add = [&](const std::optional<Finding>& finding) {
    if (finding) {
      findings.push_back(*finding);
    }
    return finding.has_value();
  };
  if (!Agrees(check)) {
    findings.push_back(NoAgreement(check));
    add(TooLittleTurning(check));
    return findings;
  }
  add(TooLittleTurning(check));
  add(TrackerMoved(check));
  add(BadPhotographs(check, evidence, grounds));
  // With a wrong mounting the result is apart for that reason.
  if (!add(MountingOff(check, grounds))) {
    add(LibraryApart(check));
  }
  const bool isSquareWrong = add(WrongSquareSize(check, grounds));
  add(HalvesDiffer(check));
  add(LensUncertain(check, evidence, grounds));
  // Squares of another size look like noise where they are not solved for, as does a tracker that
  // moved.
  if (!isSquareWrong) {
    add(TrackersNoisy(check));
  }
  return findings;
}

}  // namespace

std::vector<Finding> FindingsOf(const CrossCheck& check, const Evidence& evidence,
                                const Grounds& grounds) {
  std::vector<Finding> findings = FindingsInOrder(check, evidence, grounds);
  std::stable_sort(findings.begin(), findings.end(),
                   [](const auto& a, const auto& b) { return a.severity < b.severity; });
  return findings;
}

}  // namespace trackedcam::crosscheck
