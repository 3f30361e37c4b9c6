#pragma once

#include <string>
#include <vector>

#include "crosscheck/result.h"
#include "host/findings/finding.h"

namespace trackedcam::host {

/// The findings of the cross-check with the names of the photographs, the worst first.
/// @param photographs The names of those that were checked, in their order.
std::vector<Finding> FindingsOf(const crosscheck::CrossCheck& crossCheck,
                                const std::vector<std::string>& photographs);

}  // namespace trackedcam::host
