#pragma once

#include <string>
#include <vector>

#include "core/result_code.h"
#include "core/run_log.h"

namespace trackedcam {

/// @return 0, or -1 if the argument has fewer elements than are read. The log then names it.
ResultCode CheckLength(const RunLog& log, const std::string& argument,
                       const std::vector<double>& elements, std::size_t needed);

}  // namespace trackedcam
