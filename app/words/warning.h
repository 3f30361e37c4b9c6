#pragma once

#include <ostream>

#include "host/report.h"

namespace trackedcam::app {

/// A line that says what is wrong with a result, or doubtful, and one for each loss; nothing where
/// all is well.
void PrintWarning(std::ostream& out, const host::Report& report);

/// The exit status of a program that came to this.
int ExitStatus(const host::Report& report);

}  // namespace trackedcam::app
