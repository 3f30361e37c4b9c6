#pragma once

#include <ostream>

#include "host/engines/engine_export.h"

namespace trackedcam::app {

/// The figures in words and units that can be typed into the engine, below the axes they count
/// along.
void PrintEngineExport(std::ostream& out, const host::EngineExport& engineExport);

/// A line of error or warning; nothing when all is well.
void PrintProblem(std::ostream& out, const host::EngineExport& engineExport);

}  // namespace trackedcam::app
