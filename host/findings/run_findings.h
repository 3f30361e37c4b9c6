#pragma once

#include <vector>

#include "host/findings/finding.h"
#include "host/input/inputs.h"
#include "host/run/library_run.h"

namespace trackedcam::host {

/// What the library computed and could not write: it passes over a log or an image that a full disk
/// or a vanished folder refuses, and says nothing. The figures of the run are as good as ever; with
/// a cut log there is no second opinion about them.
std::vector<Finding> LossesOf(const LibraryRun& run);

/// Whether a finding is one of these, or of a second run that could not begin.
bool IsLoss(const Finding& finding);

/// What the run itself gives to think about, the cross-check apart.
std::vector<Finding> FindingsOf(const LibraryRun& run);

}  // namespace trackedcam::host
