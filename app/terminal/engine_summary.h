#pragma once

#include <ostream>

#include "host/engines/engine.h"

namespace trackedcam::app {

/// The values of an export, with the names and units of the engine's fields and with their axes. If
/// the lens is unknown, its rows are missing.
void PrintEngineExport(std::ostream& out, const host::EngineExport& engineExport);

/// The error or warning of an export in one line; nothing if there is none.
void PrintProblem(std::ostream& out, const host::EngineExport& engineExport);

}  // namespace trackedcam::app
