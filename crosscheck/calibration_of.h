// What a shoot leaves for later photographs.

#pragma once

#include <optional>

#include "crosscheck/calibration.h"
#include "crosscheck/evidence.h"
#include "crosscheck/observations.h"
#include "crosscheck/solve.h"

namespace trackedcam::crosscheck {

/// Nothing if a tracker moved during the shoot: there is then no one transform.
std::optional<Calibration> CalibrationOf(const Observations& observations, const Evidence& evidence,
                                         const Solution& solution);

}  // namespace trackedcam::crosscheck
