// Which photographs the next call should leave out.

#pragma once

#include <string>
#include <vector>

#include "host/findings/finding.h"
#include "host/photograph_list.h"

namespace trackedcam::host {

/// The shortest names of the photographs that findings ask to leave out, and of those that the user
/// left out already, in the order of the shoot. Of a tracker that moved, the smaller part of the
/// shoot. Empty if no finding asks for it, or if fewer than 12 photographs with the board would be
/// left.
std::vector<std::string> PhotographsToExclude(const PhotographList& list,
                                              const std::vector<Finding>& findings);

}  // namespace trackedcam::host
