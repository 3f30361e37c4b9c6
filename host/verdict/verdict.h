// The verdict on a run, and the limits by which the library judges it.

#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "host/findings/finding.h"
#include "host/photograph_list.h"
#include "host/run/calibration_outputs.h"
#include "host/run/library_run.h"

namespace trackedcam::host {

/// Above `doubt` a new calibration is recommended, above `failure` the run fails. `doubt` is empty
/// if the library has no such limit.
struct Limit {
  std::optional<double> doubt;
  double failure = 0;
};

struct Limits {
  Limit lensErrorPixels;
  std::optional<Limit> reprojectionErrorPixels;  // empty if the image size is not known
  Limit translationSpreadMetres;
  /// The filter leaves a photograph out whose axis is farther off.
  double photographAngleDegrees = 0;
};

/// The limits of a run. That of the reprojection error grows with the height of the image.
Limits LimitsOf(const CalibrationOutputs& outputs);

enum class Level {
  kGood,
  kDoubtful,
  kWrong,   // the library calibrated, but the result is certainly wrong
  kFailed,  // there is no result to use
};

/// good, doubt, wrong, failed
const char* Name(Level level);

/// What a run came to.
struct Verdict {
  Level level = Level::kFailed;
  std::string message;  // the summary, then the text of the worst finding if that decided
  std::string summary;  // level and number of photographs, or why the run failed
  std::string advice;
  std::string option = {};  // of the program, for the next call: "--refine-mounting"; may be empty
  std::vector<std::string> exclude = {};   // photographs that the next call should leave out
  std::vector<std::string> commands = {};  // of the caller, for the next step
};

/// What the library's code alone says.
Verdict VerdictOf(int code);

/// True if the library fills in a result with this code.
bool IsUsable(int code);

/// True if the library filled in a result that can be used. A transform of nan, which a data file
/// with nan causes, is a success to the library.
bool IsUsable(const LibraryRun& run);

/// The verdict on a run. An error or a warning among the findings overrides the library's success.
/// @param photographs All of the shoot, also those that the library was not given.
/// @param findings The worst first.
Verdict VerdictOf(const LibraryRun& run, const PhotographList& photographs,
                  const std::vector<Finding>& findings);

/// The verdict on a run that was given zeros for a mounting that is not known, if no second run
/// followed: it failed, whatever its code.
/// @param findings The worst first.
Verdict VerdictWithoutMounting(const LibraryRun& run, const std::vector<Finding>& findings);

constexpr int kSuccess = 0;
constexpr int kTooFewPhotographs = 4;
constexpr int kNewShootRecommended = 99;

}  // namespace trackedcam::host
