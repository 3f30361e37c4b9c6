#pragma once

#include <ostream>

#include "host/report.h"

namespace trackedcam::app {

/// What the cross-check found, in a few lines: how well the transform is known, how far the result
/// and the stated mounting are off, which photographs contradict the others.
/// @param truth Compared with as well; null when it is not known.
void PrintCrossCheck(std::ostream& out, const host::Report& report,
                     const host::CalibrationOutputs* truth);

}  // namespace trackedcam::app
