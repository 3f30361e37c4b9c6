#include "host/findings/finding.h"

#include <algorithm>

namespace trackedcam::host {
namespace {

constexpr double kTooMany = 0.3;  // of all rows or photographs

template <class... Kinds>
bool IsOneOf(const Finding& finding) {
  return (std::holds_alternative<Kinds>(finding.kind) || ...);
}

}  // namespace

Severity SeverityOf(std::size_t some, std::size_t all) {
  return static_cast<double>(some) > kTooMany * static_cast<double>(all) ? Severity::kError
                                                                         : Severity::kWarning;
}

Severity SeverityOfLeftOut(std::size_t some, std::size_t all) {
  const bool areMany = SeverityOf(some, all) == Severity::kError;
  const bool areTooFewLeft = all - some < kLeastPhotographs;
  if (areTooFewLeft && (areMany || all >= kLeastPhotographs)) {
    return Severity::kError;
  }
  return areMany ? Severity::kWarning : Severity::kNote;
}

void SortFindings(std::vector<Finding>& findings) {
  std::stable_sort(findings.begin(), findings.end(), [](const Finding& a, const Finding& b) {
    return a.severity < b.severity;  // error, warning, note
  });
}

bool CanRefine(const Finding& finding) {
  return IsOneOf<crosscheck::MountingOff, BadPhotographs, crosscheck::LibraryApart>(finding);
}

bool IsAboutRun(const Finding& finding) {
  return CanRefine(finding) || IsOneOf<FewUsed, TooFewAgree>(finding);
}

bool NothingFits(const Finding& finding) {
  return IsOneOf<crosscheck::MisreadRows, crosscheck::NoAgreement>(finding);
}

bool IsUnchecked(const Finding& finding) {
  if (const auto* rotation = std::get_if<crosscheck::TooLittleRotation>(&finding.kind)) {
    return !(rotation->amplification <= crosscheck::kMostAmplification);
  }
  const auto* log = std::get_if<LogIncomplete>(&finding.kind);
  return (log != nullptr && !log->isCrossCheckable) || IsOneOf<NotCrossChecked>(finding);
}

std::string LikelyUnit(const LengthUnit& length) {
  constexpr double kLeastMetres = 0.2;
  return length.metres / 1000 >= kLeastMetres ? "mm" : "cm";
}

bool IsOutputError(const Finding& finding) {
  return IsOneOf<LogIncomplete, ImagesMissing, NotRefined>(finding);
}

}  // namespace trackedcam::host
