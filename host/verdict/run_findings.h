#pragma once

#include <optional>
#include <vector>

#include "crosscheck/result.h"
#include "host/findings/finding.h"
#include "host/run/library_run.h"

namespace trackedcam::host {

/// Findings about the result of a run, without those of the cross-check.
/// @param check Nothing if there is none.
std::vector<Finding> FindingsOf(const LibraryRun& run,
                                const std::optional<crosscheck::CrossCheck>& check);

/// What the library computed but could not write: it reports no error if a full disk or a missing
/// folder refuses its log or an image. This does not affect the values of the run, but with an
/// incomplete log there may be no cross-check.
std::vector<Finding> OutputErrorsOf(const LibraryRun& run);

}  // namespace trackedcam::host
