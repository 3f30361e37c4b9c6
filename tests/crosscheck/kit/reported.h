// The findings of a cross-check, by their kind.

#pragma once

#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

#include "crosscheck/result.h"

namespace trackedcam::test {

/// "mountingOff error", "badPhotographs warning", ...
inline std::vector<std::string> Reported(const crosscheck::CrossCheck& check) {
  std::vector<std::string> reported;
  for (const crosscheck::Finding& finding : check.findings) {
    reported.push_back(std::string(Name(finding.kind)) + " " + Name(finding.severity));
  }
  return reported;
}

template <class Kind>
bool Has(const crosscheck::CrossCheck& check) {
  for (const crosscheck::Finding& finding : check.findings) {
    if (std::holds_alternative<Kind>(finding.kind)) {
      return true;
    }
  }
  return false;
}

/// The first finding of this kind.
template <class Kind>
const Kind& Get(const crosscheck::CrossCheck& check) {
  for (const crosscheck::Finding& finding : check.findings) {
    if (const Kind* kind = std::get_if<Kind>(&finding.kind)) {
      return *kind;
    }
  }
  throw std::runtime_error(std::string(Name(Kind())) + " is not reported");
}

}  // namespace trackedcam::test
