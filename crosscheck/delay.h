// How late the poses of the trackers are against the photographs, where both move and the motion
// is known.

#pragma once

#include <optional>
#include <vector>

#include "crosscheck/observations.h"
#include "crosscheck/twist.h"

namespace trackedcam::crosscheck {

struct Delay {
  double seconds = 0;         // by which poses of a later time fit better, at the mean time
  double error = 0;           // standard error
  double drift = 0;           // seconds of delay per second
  double driftError = 0;      // standard error
  double meanSeconds = 0;     // of the photographs that are used
  double t95 = 0;             // standard errors times this: half the width of the 95 % interval
  std::size_t used = 0;       // photographs
  double trackerNoiseMm = 0;  // along each axis
  double trackerNoiseDegrees = 0;
};

/// One step of a fit: both transforms, the noise of the trackers, and the delay. Apply it to the
/// poses, and fit again.
/// @param observations With seconds; all have a board.
/// @param perSecond The left twist of Transform_Tc_Tr per second, one for each photograph.
/// @param withDrift Otherwise the drift is 0.
/// @return Nothing if both transforms or the delay are not determined.
std::optional<Delay> FitDelay(const Observations& observations, const std::vector<Twist>& perSecond,
                              bool withDrift);

}  // namespace trackedcam::crosscheck
