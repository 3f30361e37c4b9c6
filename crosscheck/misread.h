// Rows that were meant otherwise than they were read.

#pragma once

#include <optional>
#include <string>

#include "crosscheck/evidence.h"
#include "crosscheck/observations.h"
#include "crosscheck/twist.h"

namespace trackedcam::crosscheck {

struct Reading {
  std::string id;
  double times = 1;     // so many times better than as read
  double asReadMm = 0;  // median distance of the board's corners
  double fittedMm = 0;
};

/// The reading that fits best, where it fits at least four times as well as the rows as they stand:
/// quaternionsInverted, orderXyzw, trackersExchanged, rowsLate (a row holds the trackers of the
/// photograph before), rowsEarly, millimetres, centimetres, leftHanded, mirroredX, mirroredY,
/// mirroredZ.
std::optional<Reading> FindReading(const Observations& observations, const Evidence& evidence);

// How mountings are stated wrongly.

/// The id of the slip that turns the stated mounting into the one found, or nothing.
std::optional<std::string> LikelySlip(const Observations& observations,
                                      const Pose& Transform_Tr_Chart);

}  // namespace trackedcam::crosscheck
