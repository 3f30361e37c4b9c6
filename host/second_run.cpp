#include "host/second_run.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <utility>

namespace trackedcam::host {
namespace {

// The shoot is bad if they were too many in the first run.
std::optional<Finding> LeftOutFinding(const Report& first) {
  const std::vector<std::string> names = CheckedNames(first.photographs);
  LeftOutPhotographs leftOut;
  Finding finding;
  for (std::size_t i = 0; i < names.size(); ++i) {
    const crosscheck::PerPhotograph& photograph = first.crossCheck->perPhotograph.at(i);
    if (!photograph.used) {
      leftOut.disagreements.push_back(
          {photograph.mm, photograph.degrees, photograph.whyLeftOut,
           photograph.fitsTrackersOf ? names.at(*photograph.fitsTrackersOf) : ""});
      finding.photographs.push_back(names[i]);
    }
  }
  if (finding.photographs.empty()) {
    return std::nullopt;
  }
  finding.kind = std::move(leftOut);
  const bool areTooMany =
      std::any_of(first.findings.begin(), first.findings.end(), [](const Finding& other) {
        return std::holds_alternative<BadPhotographs>(other.kind) &&
               other.severity == Severity::kError;
      });
  finding.severity = areTooMany ? Severity::kError : Severity::kNote;
  return finding;
}

}  // namespace

bool CanRunAgain(const Report& first) {
  const auto& check = first.crossCheck;
  return check && check->solved && check->used >= kLeastPhotographs &&
         (check->mounting || first.inputs.mounting) &&
         std::none_of(first.findings.begin(), first.findings.end(), NothingFits);
}

bool NeedsSecondRun(const Report& first) {
  if (!CanRunAgain(first)) {
    return false;
  }
  return !first.inputs.mounting ||
         (first.inputs.refineMounting &&
          std::any_of(first.findings.begin(), first.findings.end(), CanRefine));
}

std::optional<TooFewAgree> TooFewForSecondRun(const Report& first) {
  const auto& check = first.crossCheck;
  const bool wouldHelp =
      std::any_of(first.findings.begin(), first.findings.end(), [](const Finding& finding) {
        return finding.severity != Severity::kNote && CanRefine(finding);
      });
  if (wouldHelp && check && check->solved && check->used < kLeastPhotographs &&
      check->photographs >= kLeastPhotographs) {
    return TooFewAgree{check->used, check->photographs};
  }
  return std::nullopt;
}

Inputs InputsOfSecondRun(const Report& first) {
  Inputs inputs = first.inputs;
  if (first.crossCheck->mounting) {
    inputs.mounting = first.crossCheck->mounting;
  }
  inputs.expectedRecords = std::nullopt;
  return inputs;
}

PhotographList PhotographsOfSecondRun(const Report& first, PhotographList list) {
  for (std::size_t i = 0; i < list.size(); ++i) {
    const PhotographEntry& entry = first.photographs[i];
    if (entry.checked && !first.crossCheck->perPhotograph.at(*entry.checked).used) {
      list[i].state = PhotographState::kLeftOutByCrossCheck;
      list[i].reason = entry.reason;
    }
  }
  return list;
}

std::vector<Finding> FindingsThatStay(const Report& first) {
  std::vector<Finding> stay;
  if (auto leftOut = LeftOutFinding(first)) {
    stay.push_back(std::move(*leftOut));
  }
  std::copy_if(first.findings.begin(), first.findings.end(), std::back_inserter(stay),
               [](const Finding& finding) {
                 return finding.severity == Severity::kError && !IsAboutRun(finding);
               });
  return stay;
}

std::optional<Mounting> MountingToPassOn(const Report& report) {
  const auto& check = report.crossCheck;
  const bool isShootBad =
      std::any_of(report.findings.begin(), report.findings.end(), [](const Finding& finding) {
        return finding.severity == Severity::kError && !IsAboutRun(finding);
      });
  if (!check || !check->mounting || isShootBad) {
    return std::nullopt;
  }
  const crosscheck::StandardError& error = check->standardErrorTrChart;
  const auto [mm, degrees] = report.inputs.goodEnough;
  const bool isKnown = check->t95 * error.translationMm.maxCoeff() <= mm &&
                       check->t95 * error.rotationDegrees.maxCoeff() <= degrees;
  return !isKnown ? std::nullopt : report.firstRun ? report.inputs.mounting : check->mounting;
}

}  // namespace trackedcam::host
