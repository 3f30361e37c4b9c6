#pragma once

#include <vector>

#include "host/finding.h"
#include "host/input/inputs.h"
#include "host/run/library_run.h"

namespace trackedcam::host {

/// What the run itself gives to think about, the cross-check apart.
std::vector<Finding> FindingsOf(const LibraryRun& run);

}  // namespace trackedcam::host
