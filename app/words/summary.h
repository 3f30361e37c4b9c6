#pragma once

#include <filesystem>
#include <ostream>

#include "host/report.h"

namespace trackedcam::app {

/// What a user wants to know at the end of a run: lens, transform, photographs, errors, and the
/// verdict with what to do next.
/// @param truth Shown beside what was found; null when it is not known.
/// @param page The report page, named first among the files; empty when there is none.
void PrintSummary(std::ostream& out, const host::Report& report,
                  const host::CalibrationOutputs* truth, const std::filesystem::path& page = {});

}  // namespace trackedcam::app
