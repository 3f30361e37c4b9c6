// Shoots with a known truth, as the cross-check is told about them. Geometry only: corners are the
// lens's projection and noise, no picture is made.

#pragma once

#include "crosscheck/observations.h"
#include "crosscheck/twist.h"
#include "simulator/shoot.h"

namespace trackedcam::test {

struct KnownShoot {
  crosscheck::Observations observations;  // with the nominal mounting, without a library's result
  crosscheck::Pose Transform_Cam_Tc;      // the true one
  crosscheck::Pose Transform_Tr_Chart;    // the true one
};

/// Noisy corners come with the lens that is solved from them, as in a run of the library.
KnownShoot MakeShoot(const simulator::Shoot& simulated, double cornerNoisePixels = 0);
KnownShoot MakeShoot(const simulator::ShootOptions& options, double cornerNoisePixels = 0);

/// Forty photographs, exact in all.
simulator::ShootOptions FortyPhotographs(std::uint64_t seed);

/// The same with 0.3 mm and 0.05 degrees of noise on both trackers.
simulator::ShootOptions FortyNoisy(std::uint64_t seed);

/// The row that a tracking system reports of a tracker's pose: its axes are -x, -z, -y.
crosscheck::TrackerPose Reported(const crosscheck::Pose& tracker);

/// Transform_Cam_Tc as a calibration that believes the mounting finds it: what each photograph
/// says, the median of each element of the twists.
crosscheck::Pose BelievingTheMounting(const KnownShoot& shoot);

}  // namespace trackedcam::test
