#pragma once

#include <ostream>

#include "host/report.h"

namespace trackedcam::app {

/// The mounting that the run took and the one that the cross-check found, each in the tracker's
/// axes after the axis fix and in the reported ones. Nothing where neither is known.
void PrintMountings(std::ostream& out, const host::Report& report);

/// The mounting found, with its uncertainty and ready to paste, in the axes that the user chose.
/// Nothing where none was found.
void PrintMountingFound(std::ostream& out, const host::Report& report);

}  // namespace trackedcam::app
