#pragma once

#include <optional>

#include "crosscheck/observations.h"
#include "host/run/run_log_reader.h"

namespace trackedcam::host {

/// The input of the cross-check from the log of a run: the photographs in which the board was
/// found. Empty if the log ends before the lens, or does not have the form that the library writes.
/// @param mounting As it was stated; empty if not known.
std::optional<crosscheck::Observations> ObservationsOf(
    const RunRecord& record, const std::optional<crosscheck::Mounting>& mounting);

}  // namespace trackedcam::host
