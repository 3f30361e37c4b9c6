// Why the board was not found in photographs, and the lens is uncertain: from their files and
// pixels.

#pragma once

#include <vector>

#include "host/report.h"

namespace trackedcam::host {

/// Files that are cut short, and photographs that are not sharp. Decodes photographs only if boards
/// were lost; all of them only if the lens is uncertain as well. Enters the reasons into the list
/// of photographs.
std::vector<Finding> ExplainLostPhotographs(Report& report);

}  // namespace trackedcam::host
