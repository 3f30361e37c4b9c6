// Solves a shoot a second time: Transform_Cam_Tc and the chart's mounting together, from the
// corners and the trackers, with their uncertainty. Shares no code with the library that it checks.

#pragma once

#include "crosscheck/observations.h"
#include "crosscheck/result.h"

namespace trackedcam::crosscheck {

/// Rows and corners may hold infinite or NaN values. A shoot that cannot be solved gives a
/// CrossCheck that is not `solved`, with the finding NoAgreement.
/// @throws std::invalid_argument for an invalid board, lens or mounting, and for a photograph with
///         another number of corners than the board.
CrossCheck Check(const Observations& observations);

}  // namespace trackedcam::crosscheck
