// What goes wrong in shoots, done to known ones.

#pragma once

#include <cstddef>

#include "crosscheck/cross_check.h"
#include "crosscheck/kit/known_shoot.h"
#include "simulator/shoot.h"

namespace trackedcam::test {

/// Displaced in its own frame.
void Displace(crosscheck::TrackerPose& tracker, const crosscheck::Pose& displacement);

/// A tracker that moved on its mount before the photograph of this index.
void MoveTracker(KnownShoot& shoot, crosscheck::Tracker tracker, std::size_t before, double mm,
                 double degrees);

/// The tracker on the camera creeps along one axis, evenly, from the first photograph to the last.
void Creep(KnownShoot& shoot, double mm);

/// The camera is this many times as far from the chart.
void StepBack(simulator::Shoot& shoot, double factor);

/// Every second photograph is from this many times the distance.
void MixDistances(simulator::Shoot& shoot, double factor);

/// The noise of the trackers has heavy tails: Student's t with 3 degrees of freedom.
void FattenTails(simulator::Shoot& shoot);

/// Leaves this share of each photograph's turn away from the first; the chart's middle stays.
void TurnLess(simulator::Shoot& shoot, double share);

/// The squares are so many times as large as stated.
void MisstateSquares(KnownShoot& shoot, double factor);

}  // namespace trackedcam::test
