#pragma once

#include <optional>

#include "crosscheck/observations.h"
#include "host/run/run_log.h"

namespace trackedcam::host {

/// What the log of a run tells the cross-check: the photographs in which the board was found.
/// Nothing where the log ends before the lens is told, or does not hold what the library writes.
/// @param mounting As it was stated; nothing where that is not known.
std::optional<crosscheck::Observations> ObservationsOf(
    const RunRecord& record, const std::optional<crosscheck::Mounting>& mounting);

}  // namespace trackedcam::host
