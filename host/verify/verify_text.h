// What a verification says, in sentences with units.

#pragma once

#include <string>
#include <vector>

#include "crosscheck/verify.h"

namespace trackedcam::host {

/// A change or its interval in the axes that the tracker reports: translation (mm) before rotation
/// (degrees).
struct ReportedMove {
  Eigen::Vector3d mm;
  Eigen::Vector3d degrees;
  Eigen::Vector3d halfMm;       // half-widths of 95 % intervals
  Eigen::Vector3d halfDegrees;  // the same
};
ReportedMove InReportedAxes(const crosscheck::MountMove& move);

/// One sentence: the answer.
std::string AnswerText(const crosscheck::Verification& verification);

/// What else a person must know: sizes with their intervals, what would have been found, what was
/// left out. One sentence each.
std::vector<std::string> Details(const crosscheck::Verification& verification);

/// One sentence on what to do.
std::string AdviceText(const crosscheck::Verification& verification);

}  // namespace trackedcam::host
