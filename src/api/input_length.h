#pragma once

#include <string>
#include <vector>

#include "core/result_code.h"
#include "core/run_log.h"

namespace trackedcam {

/// Returns 0, or -1 with a line that names the argument when it has fewer elements than are read.
ResultCode CheckLength(const RunLog& log, const std::string& argument,
                       const std::vector<double>& elements, std::size_t needed);

}  // namespace trackedcam
