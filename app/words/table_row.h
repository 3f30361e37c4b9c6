#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace trackedcam::app {

/// A line of the summary: a label on the left and figures in columns on the right.
void PrintRow(std::ostream& out, const std::string& label, const std::vector<std::string>& figures);

}  // namespace trackedcam::app
