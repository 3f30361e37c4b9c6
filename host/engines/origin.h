// Where a calibration comes from, and whether its result may be exported.

#pragma once

#include <string>
#include <vector>

#include "host/verdict/verdict.h"

namespace trackedcam::host {

struct Origin {
  std::string time;  // when the calibration began, as in its log; empty if that is not known
  Level level = Level::kGood;
  std::string message;                        // of the verdict
  std::vector<double> lensErrors;             // of fx, fy, cx, cy in pixels, k1, k2; empty: unknown
  std::vector<double> positionErrorsMm;       // along the camera's x, y, z; empty: unknown
  std::vector<double> rotationErrorsDegrees;  // about them; empty: unknown
};

/// The first words of each file that has a place for its origin. They tell these files from those
/// of other programs.
constexpr const char* kWrittenBy = "Written by trackedcam ";

/// Date, verdict and uncertainty: one line each, of printable characters, without line ends.
std::vector<std::string> OriginLines(const Origin& origin);

/// That a certainly wrong result is not exported, and what to do.
/// @param permission The option that exports it.
std::string NotExportedText(const std::string& permission);

/// Why a result is not exported: its message, and NotExportedText. Empty unless it is certainly
/// wrong.
std::string RefusalOf(const Origin& origin, const std::string& permission);

/// What a user of the exported values must know; empty if the result is good.
std::string DoubtOf(const Origin& origin);

}  // namespace trackedcam::host
