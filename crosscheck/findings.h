// What to report of a result, and how serious it is.

#pragma once

#include <optional>
#include <vector>

#include "crosscheck/evidence.h"
#include "crosscheck/observations.h"
#include "crosscheck/result.h"
#include "crosscheck/solve.h"
#include "crosscheck/without_flaws.h"

namespace trackedcam::crosscheck {

/// What findings need besides the result.
struct FindingInputs {
  Accuracy goodEnough;
  std::optional<MisreadRows> misread;
  std::optional<Solution> solution;  // with the step or the size of the squares that was found
  std::optional<TrackerLoose> loose;
  std::optional<TrackerFlawTest> flaw;  // of the trackers
  std::optional<NotStill> notStill;
  WithoutFlaws withoutFlaws;     // if that or a flaw of chart or lens was found
  std::optional<Offset> result;  // of the library's transform, or of what the stated mounting gives
  std::optional<OnScreen> atChart;  // at the chart's own distance
  std::optional<LensNotSeen> lensNotSeen;
  double chartSpreadMetres = 0;  // of the chart's positions in front of the camera
};

/// The photographs show that lengths of trackers and squares do not fit each other, beyond what is
/// known of both.
bool IsSquareSizeOff(const CrossCheck& check, double chartSpreadMetres);

/// The worst first.
std::vector<Finding> FindingsOf(const CrossCheck& check, const Evidence& evidence,
                                const FindingInputs& inputs);

}  // namespace trackedcam::crosscheck
