// A run as the cross-check takes it, and what the cross-check found about it.

#pragma once

#include <optional>
#include <string>
#include <vector>

#include "crosscheck/observations.h"
#include "crosscheck/result.h"
#include "host/findings/finding.h"
#include "host/run/run_log_reader.h"

namespace trackedcam::host {

/// The input of the cross-check from the log of a run: the photographs in which the board was
/// found. Empty if the log ends before the lens, or does not have the form that the library writes.
/// @param mounting As it was stated; empty if not known.
std::optional<crosscheck::Observations> ObservationsOf(
    const RunRecord& record, const std::optional<crosscheck::Mounting>& mounting);

/// The findings of the cross-check with the names of the photographs, the worst first.
/// @param photographs The names of those that were checked, in their order.
std::vector<Finding> FindingsOf(const crosscheck::CrossCheck& crossCheck,
                                const std::vector<std::string>& photographs);

}  // namespace trackedcam::host
