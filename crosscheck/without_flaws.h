// What would still be off if the flaws that were found were not there: the rest has another cause.

#pragma once

#include <optional>

#include "crosscheck/evidence.h"
#include "crosscheck/solve.h"
#include "crosscheck/tracker_flaws.h"
#include "crosscheck/twist.h"

namespace trackedcam::crosscheck {

/// The probabilities of such differences by chance.
struct WithoutFlaws {
  double pMounting = 1;  // of the stated mounting; 1 if none is stated
  double pLibrary = 1;   // of the library's transform; 1 if it is not known
};

/// @param flaw Of the trackers; those of chart and lens are in the evidence.
WithoutFlaws TakeFlawsAway(const Observations& observations, const Evidence& evidence,
                           const Solution& solution, const std::optional<TrackerFlawTest>& flaw,
                           const std::optional<Pose>& library);

}  // namespace trackedcam::crosscheck
