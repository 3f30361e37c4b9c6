// A run as the cross-check takes it, and what the cross-check found about it.

#pragma once

#include <optional>
#include <string>
#include <vector>

#include "crosscheck/observations.h"
#include "crosscheck/result.h"
#include "host/findings/finding.h"
#include "host/input/data_file.h"
#include "host/input/inputs.h"
#include "host/run/library_run.h"

namespace trackedcam::host {

/// The input of the cross-check from the log of a run: the photographs in which the board was
/// found. Empty if the log ends before the lens, or does not have the form that the library writes.
/// @param inputs For what the log does not have: the mounting and what is good enough.
std::optional<crosscheck::Observations> ObservationsOf(const LibraryRun& run, const Inputs& inputs);

/// A row of a data file in reported axes and metres, with the corners in its photograph.
crosscheck::Photograph PhotographOf(const DataRow& row,
                                    const std::vector<Eigen::Vector2d>& corners);

/// The findings of the cross-check with the names of the photographs, the worst first.
/// @param photographs The names of those that were checked, in their order.
std::vector<Finding> FindingsOf(const crosscheck::CrossCheck& crossCheck,
                                const std::vector<std::string>& photographs);

}  // namespace trackedcam::host
