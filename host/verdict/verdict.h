// The limits by which the library judges a run.

#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/findings/finding.h"
#include "host/run/calibration_outputs.h"
#include "host/run/library_run.h"

namespace trackedcam::host {

/// Above the first a new calibration is recommended, above the second the run fails. Nothing where
/// the library has no such limit.
struct Limit {
  std::optional<double> doubt;
  double failure = 0;
};

struct Limits {
  Limit lensErrorPixels;
  std::optional<Limit> reprojectionErrorPixels;  // nothing where the image's size is not known
  Limit translationSpreadMetres;
};

/// Those of a run. That of the reprojection error grows with the height of the image.
Limits LimitsOf(const CalibrationOutputs& outputs);

// What a run came to, for whoever shot the photographs.

enum class Level {
  kGood,
  kDoubtful,
  kWrong,   // the library calibrated, and the cross-check is certain that it is wrong
  kFailed,  // there is no result to use
};

/// good, doubt, wrong, failed
const char* Name(Level level);

/// What a caller can do at once.
enum class NextStep { kNone, kRefineMounting };

struct Verdict {
  Level level = Level::kFailed;
  std::string words;
  std::string advice;
  NextStep nextStep = NextStep::kNone;
  std::vector<std::string> commands = {};  // of the caller's, to go on with
};

/// What the library's code alone says. One that it does not document gets words that say so.
Verdict VerdictOf(int code);

/// True where the library hands out a result.
bool IsUsable(int code);

/// True where the library handed out a result that can be used: the transform of a data file that
/// holds nan is a success to it.
bool IsUsable(const LibraryRun& run);

/// The verdict on a run in the light of what was found. An error or a warning among the findings
/// speaks before the library does.
/// @param findings The worst first.
Verdict VerdictOf(const LibraryRun& run, const std::vector<Finding>& findings);

constexpr int kSuccess = 0;
constexpr int kTooFewPhotographs = 4;
constexpr int kNewShootRecommended = 99;

}  // namespace trackedcam::host
