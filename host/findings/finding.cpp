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

void SortFindings(std::vector<Finding>& findings) {
  std::stable_sort(findings.begin(), findings.end(), [](const Finding& a, const Finding& b) {
    return a.severity < b.severity;  // error, warning, note
  });
}

bool CanRefine(const Finding& finding) {
  return IsOneOf<crosscheck::MountingOff, BadPhotographs, crosscheck::LibraryApart>(finding);
}

bool IsOutputError(const Finding& finding) {
  return IsOneOf<LogIncomplete, ImagesMissing, NotRefined>(finding);
}

}  // namespace trackedcam::host
