// A second answer to a shoot, with its uncertainty: Transform_Cam_Tc and the chart's mounting
// solved together from the corners and the trackers. It shares nothing with the library that it
// checks.

#pragma once

#include "crosscheck/observations.h"
#include "crosscheck/result.h"

namespace trackedcam::crosscheck {

/// Never hangs and never fails on what is not a number: what cannot be solved gives a CrossCheck
/// that is not `solved`, with the finding kNoAgreement.
/// @throws std::invalid_argument for a board, lens, mounting or library that cannot be, and for
///         photographs that do not have the board's number of corners.
CrossCheck Check(const Observations& observations);

}  // namespace trackedcam::crosscheck
