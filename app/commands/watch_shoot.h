// The part of "calibrate" that follows a shoot while it is photographed.

#pragma once

#include <filesystem>

#include "host/input/inputs.h"

namespace trackedcam::app {

/// Says of each new photograph what it adds, and what is still missing, until Ctrl-C. The page
/// watch.html in the log folder says the same.
/// @param until How accurately the transform must be known, with 95 %.
/// @throws InputError for impossible inputs, and if the data file can no longer be read.
void WatchShoot(const host::Inputs& inputs, const host::Accuracy& until);

}  // namespace trackedcam::app
